#include "update/HttpTransfer.h"

#include <curl/curl.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <mutex>

namespace cuewright::HttpTransfer {

namespace {

    struct EasyDeleter {
        void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
    };
    struct SlistDeleter {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };
    struct FileCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    using Easy = std::unique_ptr<CURL, EasyDeleter>;
    using Slist = std::unique_ptr<curl_slist, SlistDeleter>;

    Easy makeEasy(const std::string& url, const UpdateSession& session, char* errorBuffer)
    {
        static std::once_flag globalInit;
        std::call_once(globalInit, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });

        Easy curl(curl_easy_init());
        if (!curl)
            throw UpdateTransferError("The network library could not be started.");
        CURL* c = curl.get();
        errorBuffer[0] = '\0';
        curl_easy_setopt(c, CURLOPT_ERRORBUFFER, errorBuffer);
        curl_easy_setopt(c, CURLOPT_URL, url.c_str());
        // Neither the first request nor any redirect may leave https.
        curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "https");
        curl_easy_setopt(c, CURLOPT_REDIR_PROTOCOLS_STR, "https");
        curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(c, CURLOPT_MAXREDIRS, 10L);
        curl_easy_setopt(c, CURLOPT_SSL_VERIFYPEER, 1L);
        curl_easy_setopt(c, CURLOPT_SSL_VERIFYHOST, 2L);
        curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(c, CURLOPT_USERAGENT, "Vantrel Cuewright updater");
        if (!session.trustedCertificateAuthorities.empty()) {
            curl_easy_setopt(c, CURLOPT_CAINFO, session.trustedCertificateAuthorities.c_str());
            curl_easy_setopt(c, CURLOPT_CAPATH, nullptr);
        }
        return curl;
    }

    [[noreturn]] void fail(CURLcode code, const char* errorBuffer)
    {
        throw UpdateTransferError(errorBuffer[0] ? errorBuffer : curl_easy_strerror(code));
    }

    long responseStatus(CURL* curl)
    {
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        return status;
    }

    struct BodySink {
        std::string body;
        std::size_t maximum = 0;
    };

    size_t appendBody(char* data, size_t size, size_t count, void* user)
    {
        auto* sink = static_cast<BodySink*>(user);
        const size_t bytes = size * count;
        if (sink->body.size() + bytes > sink->maximum)
            return 0;
        sink->body.append(data, bytes);
        return bytes;
    }

    struct FileSink {
        CURL* curl = nullptr;
        std::FILE* file = nullptr;
        bool refused = false;
    };

    size_t writeFile(char* data, size_t size, size_t count, void* user)
    {
        auto* sink = static_cast<FileSink*>(user);
        if (responseStatus(sink->curl) != 200) {
            sink->refused = true;
            return 0;
        }
        return std::fwrite(data, size, count, sink->file) * size;
    }

    int reportProgress(void* user, curl_off_t total, curl_off_t now, curl_off_t, curl_off_t)
    {
        const auto& progress = *static_cast<const ProgressCallback*>(user);
        std::optional<std::uint64_t> expected;
        if (total > 0)
            expected = static_cast<std::uint64_t>(total);
        progress(static_cast<std::uint64_t>(now), expected);
        return 0;
    }

} // namespace

Response get(
    const std::string& url, const UpdateSession& session, std::chrono::seconds timeout, std::size_t maximumBytes)
{
    char errorBuffer[CURL_ERROR_SIZE];
    Easy curl = makeEasy(url, session, errorBuffer);
    CURL* c = curl.get();
    Slist headers(curl_slist_append(nullptr, "Cache-Control: no-cache"));
    headers.reset(curl_slist_append(headers.release(), "Pragma: no-cache"));
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(c, CURLOPT_FRESH_CONNECT, 1L);
    curl_easy_setopt(c, CURLOPT_TIMEOUT, static_cast<long>(timeout.count()));
    BodySink sink { {}, maximumBytes };
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, appendBody);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &sink);
    const CURLcode code = curl_easy_perform(c);
    if (code != CURLE_OK)
        fail(code, errorBuffer);
    return { responseStatus(c), std::move(sink.body) };
}

long download(const std::string& url, const std::filesystem::path& destination, const UpdateSession& session,
    const ProgressCallback& progress)
{
    char errorBuffer[CURL_ERROR_SIZE];
    Easy curl = makeEasy(url, session, errorBuffer);
    CURL* c = curl.get();
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(destination.c_str(), "wb"));
    if (!file)
        throw std::filesystem::filesystem_error(
            "The update could not be saved", destination, std::error_code(errno, std::generic_category()));
    // An archive may be large: no overall limit, but a stalled connection ends after a minute.
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, 30L);
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(c, CURLOPT_LOW_SPEED_TIME, 60L);
    FileSink sink { c, file.get(), false };
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, writeFile);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &sink);
    if (progress) {
        curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, reportProgress);
        curl_easy_setopt(c, CURLOPT_XFERINFODATA, &progress);
        curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
    }
    const CURLcode code = curl_easy_perform(c);
    const long status = responseStatus(c);
    if (code != CURLE_OK && !(code == CURLE_WRITE_ERROR && sink.refused))
        fail(code, errorBuffer);
    if (status == 200 && (std::fflush(file.get()) != 0 || std::ferror(file.get())))
        throw std::filesystem::filesystem_error(
            "The update could not be saved", destination, std::error_code(EIO, std::generic_category()));
    return status;
}

} // namespace cuewright::HttpTransfer
