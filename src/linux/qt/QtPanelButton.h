#pragma once

#include <QObject>
#include <QPointer>
#include <QToolButton>

#include "foundation/HandlerList.h"
#include "platform/Panel.h"

class QWidget;

namespace orlet::linux_qt {

// A borderless symbol button laid over a panel, kept at its distance from its corner when the
// panel is resized.
class QtPanelButton final : public QObject, public PanelButton {
 public:
  QtPanelButton(QWidget& panel, const PanelButtonConfig& config);
  ~QtPanelButton() override;

  void setHidden(bool hidden) override;
  bool isHidden() const override;
  void setSymbol(const std::string& symbol, ButtonTint tint) override;
  void setToolTip(const std::string& toolTip) override;
  Subscription onClick(std::function<void()> handler) override;

  QToolButton* button() const { return button_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void place();

  QPointer<QWidget> panel_;  // may go first: the button then has nothing left to do
  PanelButtonConfig config_;
  QPointer<QToolButton> button_;
  HandlerList<> clickHandlers_;
};

}  // namespace orlet::linux_qt
