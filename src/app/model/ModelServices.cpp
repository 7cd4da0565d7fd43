#include "app/model/ModelServices.h"

#include <QLocale>

#include <stdexcept>

namespace cuewright {

ModelServices defaultModelServices()
{
    ModelServices services;
    services.transcribe = [](const QString&, const QString&) -> std::vector<RecognizedWord> {
        throw std::runtime_error("Local transcription is not available.");
    };
    services.cuesFromWords = [](const std::vector<RecognizedWord>&, int, double) { return std::vector<CaptionCue>(); };
    services.exportBurnedVideo = [](const QString&, const QString&, const CaptionDocument&, const CaptionStyle&) {
        throw std::runtime_error("Exporting a captioned video is not available.");
    };
    services.supportedLanguageIdentifiers = [] { return QStringList { QStringLiteral("en-US") }; };
    services.currentLocaleIdentifier = [] { return QLocale::system().name().replace(u'_', u'-'); };
    return services;
}

} // namespace cuewright
