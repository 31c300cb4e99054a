#pragma once

class QScreen;
class QWidget;

namespace orlet::linux_qt {

// The object name of the floating button's window, by which ORLET's other windows find it.
inline constexpr char floatingButtonName[] = "orlet-floating-button";

// The display of the floating button: the operator's own. ORLET's windows other than the mirror
// open there, never where the window manager would put them by the pointer, which may just
// have been carried onto the client's display. The primary display while there is no button.
QScreen* homeScreen();

// Centres `window` on the home screen's free area; to be done before it is shown.
void centreOnHomeScreen(QWidget& window);

}  // namespace orlet::linux_qt
