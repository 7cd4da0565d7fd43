#include "app/model/ModelServices.h"

#include "speech/WordCues.h"

#include <QLocale>

#include <stdexcept>

// The transcriber and the burner are separate layers; until a build has them the model
// says so in the status line instead of failing to link.
#if __has_include("speech/LocalTranscriber.h")
#include "speech/LocalTranscriber.h"
#define CUEWRIGHT_HAS_TRANSCRIBER 1
#endif
#if __has_include("media/CaptionBurner.h")
#include "media/CaptionBurner.h"
#define CUEWRIGHT_HAS_BURNER 1
#endif

namespace cuewright {

ModelServices defaultModelServices()
{
    ModelServices services;
#ifdef CUEWRIGHT_HAS_TRANSCRIBER
    services.transcribe = [](const QString& videoPath, const QString& languageIdentifier) {
        return LocalTranscriber::transcribe(videoPath.toStdString(), languageIdentifier.toStdString());
    };
    services.supportedLanguageIdentifiers = [] {
        QStringList identifiers;
        for (const auto& identifier : LocalTranscriber::supportedLanguageIdentifiers())
            identifiers.push_back(QString::fromStdString(identifier));
        return identifiers;
    };
#else
    services.transcribe = [](const QString&, const QString&) -> std::vector<RecognizedWord> {
        throw std::runtime_error("Local transcription is not available in this build.");
    };
    services.supportedLanguageIdentifiers = [] { return QStringList { QStringLiteral("en-US") }; };
#endif
    services.cuesFromWords = [](const std::vector<RecognizedWord>& words, int maximumWords, double maximumDuration) {
        return LocalTranscriber::cues(words, maximumWords, maximumDuration);
    };
#ifdef CUEWRIGHT_HAS_BURNER
    services.exportBurnedVideo = [](const QString& source, const QString& destination, const CaptionDocument& document,
                                     const CaptionStyle& style) {
        CaptionBurner::exportVideo(source.toStdString(), destination.toStdString(), document, style);
    };
#else
    services.exportBurnedVideo = [](const QString&, const QString&, const CaptionDocument&, const CaptionStyle&) {
        throw std::runtime_error("Exporting a captioned video is not available in this build.");
    };
#endif
    services.currentLocaleIdentifier = [] { return QLocale::system().name().replace(u'_', u'-'); };
    return services;
}

} // namespace cuewright
