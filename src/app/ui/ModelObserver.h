#pragma once

#include "app/model/AppModel.h"

#include <QObject>

namespace cuewright {

// Runs `update` now and again after each of the given change signals of the model, for as
// long as `context` lives. Views use it to keep text and enablement live.
template <typename Update, typename... Signals>
void observe(const AppModel& model, QObject* context, Update update, Signals... changeSignals)
{
    (QObject::connect(&model, changeSignals, context, update), ...);
    update();
}

} // namespace cuewright
