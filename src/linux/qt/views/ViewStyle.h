#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

// The named styles the views use, derived from the application's font and palette so that
// they follow the desktop's theme.
namespace orlet::linux_qt::style {

QFont captionFont();         // card captions, popover text
QFont smallerCaptionFont();  // the "•••" button
QFont headlineFont();        // the permission card's title
QFont subheadlineFont();     // the permission status

QColor secondaryColor(const QPalette& palette);  // secondary labels and symbols
QColor systemGreen();
QColor systemRed();

}  // namespace orlet::linux_qt::style
