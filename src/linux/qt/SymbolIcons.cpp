#include "linux/qt/SymbolIcons.h"

#include <QIcon>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>
#include <map>

namespace orlet::linux_qt {
namespace {

struct SymbolSource {
  const char* themeName;  // freedesktop icon naming (or the common desktop themes' name)
  const char* bundled;    // resource path
};

const std::map<std::string, SymbolSource>& sources() {
  static const std::map<std::string, SymbolSource> table{
      {"arrow.left", {"go-previous", ":/orlet/icons/arrow-left.svg"}},
      {"pin.fill", {"window-pin", ":/orlet/icons/pin.svg"}},
      {"pin.slash", {"window-unpin", ":/orlet/icons/pin-slash.svg"}},
      {"wifi.slash", {"network-wireless-offline-symbolic", ":/orlet/icons/wifi-slash.svg"}},
  };
  return table;
}

QPixmap renderBundled(const char* path, int side) {
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QSvgRenderer renderer{QString::fromLatin1(path)};
  QPainter painter(&pixmap);
  renderer.render(&painter);
  return pixmap;
}

// Only the shape of the picture is kept; its colours become the tint.
void tint(QPixmap& pixmap, const QColor& color) {
  QPainter painter(&pixmap);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(pixmap.rect(), color);
}

}  // namespace

QPixmap symbolPixmap(const std::string& symbol, const QColor& color, int logicalSize,
                     qreal devicePixelRatio) {
  const auto it = sources().find(symbol);
  if (it == sources().end()) return {};
  const int side = static_cast<int>(std::ceil(logicalSize * devicePixelRatio));
  QPixmap pixmap;
  const QIcon themed = QIcon::fromTheme(QString::fromLatin1(it->second.themeName));
  if (!themed.isNull())
    pixmap = themed.pixmap(QSize(side, side))
                 .scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  if (pixmap.isNull()) pixmap = renderBundled(it->second.bundled, side);
  pixmap.setDevicePixelRatio(devicePixelRatio);
  tint(pixmap, color);
  return pixmap;
}

}  // namespace orlet::linux_qt
