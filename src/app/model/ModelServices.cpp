#include "app/model/ModelServices.h"

#include "media/CaptionBurner.h"
#include "speech/LocalTranscriber.h"
#include "speech/WordCues.h"

#include <QLocale>

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
    services.exportBurnedVideo = [](const QString& source, const QString& destination, const CaptionDocument& document,
                                     const CaptionStyle& style) {
        CaptionBurner::exportVideo(source.toStdString(), destination.toStdString(), document, style);
    };
    services.currentLocaleIdentifier = [] { return QLocale::system().name().replace(u'_', u'-'); };
    return services;
}

} // namespace cuewright
