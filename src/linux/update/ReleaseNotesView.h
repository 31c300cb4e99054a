#pragma once

#include <QTextBrowser>

namespace orlet::linux_update {

// The release notes of an offer. They come unsigned from the feed: nothing they name is loaded
// (no image, no style sheet, least of all a local file), and of their links only https ones are
// opened, in the desktop's browser.
class ReleaseNotesView final : public QTextBrowser {
 public:
  explicit ReleaseNotesView(QWidget* parent = nullptr);

  QVariant loadResource(int type, const QUrl& name) override;

  // Opens `url` in the desktop's browser when it is https; says whether it did.
  static bool openIfHttps(const QUrl& url);
};

}  // namespace orlet::linux_update
