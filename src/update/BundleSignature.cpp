#include "update/BundleSignature.h"

#include "update/UpdateArchive.h"

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>

namespace cuewright::BundleSignature {

namespace fs = std::filesystem;

namespace {

    struct BioDeleter {
        void operator()(BIO* bio) const { BIO_free(bio); }
    };
    struct CmsDeleter {
        void operator()(CMS_ContentInfo* cms) const { CMS_ContentInfo_free(cms); }
    };
    struct StoreDeleter {
        void operator()(X509_STORE* store) const { X509_STORE_free(store); }
    };
    struct SignersDeleter {
        void operator()(STACK_OF(X509) * signers) const { sk_X509_free(signers); }
    };

    std::optional<std::string> readFile(const fs::path& path)
    {
        std::error_code error;
        if (!fs::is_regular_file(fs::symlink_status(path, error)))
            return std::nullopt;
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        if (!in || in.bad())
            return std::nullopt;
        return text.str();
    }

    std::unique_ptr<X509_STORE, StoreDeleter> anchorStore(const fs::path& anchor)
    {
        const auto pem = readFile(anchor);
        if (!pem)
            return nullptr;
        std::unique_ptr<X509_STORE, StoreDeleter> store(X509_STORE_new());
        std::unique_ptr<BIO, BioDeleter> bio(BIO_new_mem_buf(pem->data(), static_cast<int>(pem->size())));
        if (!store || !bio)
            return nullptr;
        int count = 0;
        while (X509* certificate = PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr)) {
            const int added = X509_STORE_add_cert(store.get(), certificate);
            X509_free(certificate);
            if (added != 1)
                return nullptr;
            ++count;
        }
        // The default S/MIME purpose would refuse a signer certificate made for code signing.
        if (count == 0 || X509_STORE_set_purpose(store.get(), X509_PURPOSE_ANY) != 1)
            return nullptr;
        return store;
    }

    std::optional<std::string> organizationalUnit(X509* certificate)
    {
        const X509_NAME* subject = X509_get_subject_name(certificate);
        const int index = X509_NAME_get_index_by_NID(subject, NID_organizationalUnitName, -1);
        if (index < 0)
            return std::nullopt;
        unsigned char* utf8 = nullptr;
        const int length = ASN1_STRING_to_UTF8(&utf8, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, index)));
        if (length < 0)
            return std::nullopt;
        std::string value(reinterpret_cast<const char*>(utf8), static_cast<std::size_t>(length));
        OPENSSL_free(utf8);
        return value;
    }

    bool signatureHolds(
        const std::string& resources, const std::string& signature, const fs::path& anchor, const std::string& teamID)
    {
        auto store = anchorStore(anchor);
        if (!store)
            return false;
        std::unique_ptr<BIO, BioDeleter> signatureBio(
            BIO_new_mem_buf(signature.data(), static_cast<int>(signature.size())));
        std::unique_ptr<BIO, BioDeleter> content(BIO_new_mem_buf(resources.data(), static_cast<int>(resources.size())));
        if (!signatureBio || !content)
            return false;
        std::unique_ptr<CMS_ContentInfo, CmsDeleter> cms(d2i_CMS_bio(signatureBio.get(), nullptr));
        if (!cms || CMS_is_detached(cms.get()) != 1)
            return false;
        if (CMS_verify(cms.get(), nullptr, store.get(), content.get(), nullptr, CMS_BINARY) != 1)
            return false;
        std::unique_ptr<STACK_OF(X509), SignersDeleter> signers(CMS_get0_signers(cms.get()));
        if (!signers || sk_X509_num(signers.get()) == 0)
            return false;
        for (int i = 0; i < sk_X509_num(signers.get()); ++i) {
            if (organizationalUnit(sk_X509_value(signers.get(), i)) != teamID)
                return false;
        }
        return true;
    }

    // CodeResources as path -> "F <digest>" / "L <digest>"; nothing when a line is malformed or repeats.
    std::optional<std::map<std::string, std::string>> listedEntries(const std::string& resources)
    {
        std::map<std::string, std::string> entries;
        std::istringstream lines(resources);
        std::string line;
        while (std::getline(lines, line)) {
            if (line.size() < 68 || (line[0] != 'F' && line[0] != 'L') || line[1] != ' ' || line[66] != ' ')
                return std::nullopt;
            if (!entries.emplace(line.substr(67), line.substr(0, 66)).second)
                return std::nullopt;
        }
        if (!resources.empty() && resources.back() != '\n')
            return std::nullopt;
        return entries;
    }

    // What is on disk, in the same form; nothing on an unreadable tree or a file of another kind.
    std::optional<std::map<std::string, std::string>> presentEntries(const fs::path& bundle)
    {
        std::map<std::string, std::string> entries;
        std::error_code error;
        for (auto it = fs::recursive_directory_iterator(bundle, error); it != fs::recursive_directory_iterator();
             it.increment(error)) {
            if (error)
                return std::nullopt;
            const fs::file_status status = it->symlink_status(error);
            if (error)
                return std::nullopt;
            const std::string relative = it->path().lexically_relative(bundle).generic_string();
            if (relative == resourcesPath || relative == signaturePath)
                continue;
            if (fs::is_symlink(status)) {
                const fs::path target = fs::read_symlink(it->path(), error);
                if (error)
                    return std::nullopt;
                entries.emplace(relative, "L " + UpdateArchive::sha256HexOfText(target.native()));
            } else if (fs::is_regular_file(status)) {
                entries.emplace(relative, "F " + UpdateArchive::sha256Hex(it->path()));
            } else if (!fs::is_directory(status)) {
                return std::nullopt;
            }
        }
        if (error)
            return std::nullopt;
        return entries;
    }

} // namespace

bool isValid(const fs::path& bundle, const fs::path& anchor, const std::string& teamID)
{
    try {
        const auto resources = readFile(bundle / resourcesPath);
        const auto signature = readFile(bundle / signaturePath);
        if (!resources || !signature || !signatureHolds(*resources, *signature, anchor, teamID))
            return false;
        const auto listed = listedEntries(*resources);
        return listed && listed == presentEntries(bundle);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace cuewright::BundleSignature
