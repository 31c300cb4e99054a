#include <gtest/gtest.h>

#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QTemporaryDir>
#include <QTextDocument>

#include "linux/update/ReleaseNotesView.h"

namespace orlet {
namespace {

// Records the links handed to the desktop.
class Opened : public QObject {
  Q_OBJECT
 public:
  QList<QUrl> urls;
 public slots:
  void open(const QUrl& url) { urls.append(url); }
};

// The notes come unsigned from the feed: a picture they name on the local disk is never read,
// and only their https links reach the desktop.
TEST(ReleaseNotes, NothingLocalIsReadAndOnlyHttpsLinksOpen) {
  static int argc = 1;
  static char name[] = "release_notes_test";
  static char* argv[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!QCoreApplication::instance()) new QApplication(argc, argv);

  QTemporaryDir dir;
  const QString secret = dir.filePath(QStringLiteral("secret.html"));
  QFile file(secret);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("<p>private</p>");
  file.close();
  linux_update::ReleaseNotesView notes;
  const QUrl local = QUrl::fromLocalFile(secret);
  notes.setHtml(QStringLiteral("<img src=\"%1\"><a href=\"%1\">x</a>").arg(secret));
  EXPECT_FALSE(notes.document()->resource(QTextDocument::ImageResource, local).isValid());
  EXPECT_FALSE(notes.document()->resource(QTextDocument::HtmlResource, local).isValid());

  Opened opened;
  for (const char* scheme : {"https", "http", "file", "smb"})
    QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), &opened, "open");
  for (const char* link : {"file:///etc/passwd", "http://example.org/notes", "smb://host/share",
                           "https://example.org/notes"})
    emit notes.anchorClicked(QUrl(QString::fromLatin1(link)));
  EXPECT_EQ(opened.urls, QList<QUrl>{QUrl(QStringLiteral("https://example.org/notes"))});
  EXPECT_EQ(notes.source(), QUrl()) << "a link never replaces the notes";
  for (const char* scheme : {"https", "http", "file", "smb"})
    QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
}

}  // namespace
}  // namespace orlet

#include "release_notes_test.moc"
