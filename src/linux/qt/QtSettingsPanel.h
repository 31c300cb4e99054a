#pragma once

#include <QWidget>
#include <optional>

#include "foundation/HandlerList.h"
#include "linux/qt/XdgAutostart.h"
#include "linux/x11/X11PanelWindow.h"
#include "platform/SettingsPanel.h"
#include "settings/ShortcutRecorderManager.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace orlet::linux_qt {

// "Paramètres" as a titled Qt window that never takes the focus: the recorder button, the
// refusal line and "Valider", following the recorder's published state; below them, whether
// ORLET starts with the session.
class QtSettingsPanel final : public QWidget, public SettingsPanel {
 public:
  QtSettingsPanel(const x11::XConnection& x, ShortcutRecorderManager& recorder,
                  XdgAutostart& autostart, std::function<void()> onClose);

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

  ShortcutRecorderManager& recorder_;
  XdgAutostart& autostart_;
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
                         XdgAutostart autostart = XdgAutostart::forThisProcess())
      : x_(x), recorder_(std::move(recorder)), autostart_(std::move(autostart)) {}
  std::unique_ptr<SettingsPanel> createSettingsPanel(std::function<void()> onClose) override {
    return std::make_unique<QtSettingsPanel>(x_, recorder_(), autostart_, std::move(onClose));
  }

 private:
  const x11::XConnection& x_;
  std::function<ShortcutRecorderManager&()> recorder_;
  XdgAutostart autostart_;
};

}  // namespace orlet::linux_qt
