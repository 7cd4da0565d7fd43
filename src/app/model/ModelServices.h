#pragma once

#include "core/CaptionCue.h"
#include "core/CaptionDocument.h"
#include "core/CaptionStyle.h"
#include "core/RecognizedWord.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace cuewright {

// The long-running work and the facts of the machine the model asks for. The functions
// `transcribe` and `exportBurnedVideo` run on a worker thread with copies of their
// arguments and report failure by throwing an exception whose what() is the user-readable
// message. The others run on the main thread.
struct ModelServices {
    // Timed words of the speech in the video, in the language given as a locale identifier.
    std::function<std::vector<RecognizedWord>(const QString& videoPath, const QString& languageIdentifier)> transcribe;
    // Cuts words into cues (at most `maximumWords` words and `maximumDuration` seconds each).
    std::function<std::vector<CaptionCue>(
        const std::vector<RecognizedWord>& words, int maximumWords, double maximumDuration)>
        cuesFromWords;
    // Writes `destinationPath` as `sourcePath` with the captions in the picture; replaces the
    // destination only on success.
    std::function<void(const QString& sourcePath, const QString& destinationPath, const CaptionDocument& document,
        const CaptionStyle& style)>
        exportBurnedVideo;
    // Locale identifiers ("en-US") the transcriber can work in, in the picker's order.
    std::function<QStringList()> supportedLanguageIdentifiers;
    // The user's locale as an identifier ("de-CH").
    std::function<QString()> currentLocaleIdentifier;
};

// The real services: the local transcriber, the caption burner and the system locale.
ModelServices defaultModelServices();

} // namespace cuewright
