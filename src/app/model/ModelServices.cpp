#include "app/model/ModelServices.h"

#include "speech/LocalTranscriber.h"
#include "speech/WordCues.h"

#include <QLocale>

#include <stdexcept>

// The burner is a separate layer; until a build has it the model says so in the status
// line instead of failing to link.
#if __has_include("media/CaptionBurner.h")
#include "media/CaptionBurner.h"
#define CUEWRIGHT_HAS_BURNER 1
#endif

namespace cuewright {

ModelServices defaultModelServices()
{
    ModelServices services;
    services.transcribe = [](const QString& videoPath, const QString& languageIdentifier) {
        return LocalTranscriber::transcribe(videoPath.toStdString(), languageIdentifier.toStdString());
    };
    services.supportedLanguageIdentifiers = [] {
        QStringList identifiers;
        for (const auto& identifier : LocalTranscriber::supportedLanguageIdentifiers())
            identifiers.push_back(QString::fromStdString(identifier));
        return identifiers;
    };
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
