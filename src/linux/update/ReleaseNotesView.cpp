#include "linux/update/ReleaseNotesView.h"

#include <QDesktopServices>
#include <QTextDocument>

namespace orlet::linux_update {

namespace {

// A document loads what the browser does not, local files included: this one loads nothing.
class NothingLoaded final : public QTextDocument {
 public:
  using QTextDocument::QTextDocument;

 protected:
  QVariant loadResource(int, const QUrl&) override { return {}; }
};

}  // namespace

ReleaseNotesView::ReleaseNotesView(QWidget* parent) : QTextBrowser(parent) {
  setDocument(new NothingLoaded(this));
  setOpenLinks(false);
  connect(this, &QTextBrowser::anchorClicked, this, &ReleaseNotesView::openIfHttps);
}

QVariant ReleaseNotesView::loadResource(int, const QUrl&) {
  return {};
}

bool ReleaseNotesView::openIfHttps(const QUrl& url) {
  if (url.scheme() != QLatin1String("https") || url.host().isEmpty()) return false;
  return QDesktopServices::openUrl(url);
}

}  // namespace orlet::linux_update
