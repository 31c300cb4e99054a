#pragma once

#include <QWidget>
#include <optional>

#include "foundation/HandlerList.h"
#include "linux/qt/EditorRow.h"
#include "linux/qt/XdgAutostart.h"
#include "linux/x11/X11PanelWindow.h"
#include "platform/SettingsPanel.h"
#include "settings/ShortcutRecorderManager.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace orlet::linux_qt {

// What the settings panel shows and changes.
struct SettingsParts {
  ShortcutRecorderManager& recorder;
  XdgAutostart& autostart;
  const CaptureOneFocus& editor;
  EditorChoice& editorChoice;
};

// "Paramètres" as a titled Qt window that never takes the focus: the recorder button, the
// refusal line and "Valider", following the recorder's published state; below them, whether
// ORLET starts with the session, and the editor.
class QtSettingsPanel final : public QWidget, public SettingsPanel {
 public:
  QtSettingsPanel(const x11::XConnection& x, const SettingsParts& parts,
                  std::function<void()> onClose);

  void orderFrontRegardless() override;
  bool isVisible() const override { return QWidget::isVisible(); }
  void close() override { QWidget::close(); }
  Subscription observeWillClose(std::function<void()> handler) override {
    return willClose_.add(std::move(handler));
  }
  Subscription observeLeftMouseUp(std::function<void()> handler) override {
    return leftUp_.add(std::move(handler));
  }

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void build();
  void addAutostart(QLayout& column);
  void observeRecorder();
  void refresh();
  void centre();
  void fitHeight();

  ShortcutRecorderManager& recorder_;
  XdgAutostart& autostart_;
  EditorRow* editorRow_ = nullptr;
  std::function<void()> onClose_;
  std::optional<x11::X11PanelWindow> x11_;
  QPushButton* recorderButton_ = nullptr;
  QLabel* error_ = nullptr;
  QPushButton* validate_ = nullptr;
  QCheckBox* autostartBox_ = nullptr;
  std::vector<Subscription> subscriptions_;
  HandlerList<> willClose_, leftUp_;
};

class QtSettingsPanelFactory final : public SettingsPanelFactory {
 public:
  QtSettingsPanelFactory(const x11::XConnection& x,
                         std::function<ShortcutRecorderManager&()> recorder,
                         const CaptureOneFocus& editor, EditorChoice& editorChoice,
                         XdgAutostart autostart = XdgAutostart::forThisProcess())
      : x_(x),
        recorder_(std::move(recorder)),
        editor_(editor),
        editorChoice_(editorChoice),
        autostart_(std::move(autostart)) {}
  std::unique_ptr<SettingsPanel> createSettingsPanel(std::function<void()> onClose) override {
    return std::make_unique<QtSettingsPanel>(
        x_, SettingsParts{recorder_(), autostart_, editor_, editorChoice_}, std::move(onClose));
  }
  XdgAutostart& autostart() { return autostart_; }

 private:
  const x11::XConnection& x_;
  std::function<ShortcutRecorderManager&()> recorder_;
  const CaptureOneFocus& editor_;
  EditorChoice& editorChoice_;
  XdgAutostart autostart_;
};

}  // namespace orlet::linux_qt
