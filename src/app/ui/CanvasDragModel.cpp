#include "app/ui/CanvasDragModel.h"

#include <algorithm>

namespace cuewright {

namespace CanvasGeometry {
    double defaultY(const CaptionStyle& style)
    {
        return std::max(1.0 - style.bottomMargin - 0.07, 0.08);
    }
}

namespace G = CanvasGeometry;

CanvasPoint CanvasDragModel::displayedCanvasPosition(
    const CaptionCue& cue, const CaptionStyle& style, double width, double height) const
{
    if (m_edit && m_edit->id == cue.id)
        return { width * m_edit->x, height * m_edit->y };
    return { width * cue.positionX.value_or(G::defaultX), height * cue.positionY.value_or(G::defaultY(style)) };
}

bool CanvasDragModel::sample(const CaptionCue& cue, const CaptionStyle& style, double translationX, double translationY,
    double width, double height)
{
    if (!(width > 0) || !(height > 0))
        return false;
    CanvasCueEdit edit;
    if (m_edit && m_edit->id == cue.id) {
        edit = *m_edit;
    } else {
        const double x = cue.positionX.value_or(G::defaultX);
        const double y = cue.positionY.value_or(G::defaultY(style));
        edit = { cue.id, x, y, x, y };
    }
    // The clamp holds the centre, not the edges: a wide caption may stand partly outside.
    edit.x = std::min(std::max(edit.originalX + translationX / width, G::lowerClamp), G::upperClamp);
    edit.y = std::min(std::max(edit.originalY + translationY / height, G::lowerClamp), G::upperClamp);
    m_edit = edit;
    return true;
}

} // namespace cuewright
