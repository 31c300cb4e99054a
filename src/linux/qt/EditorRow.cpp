#include "linux/qt/EditorRow.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "settings/EditorOptions.h"
#include "window/TextCase.h"

namespace orlet::linux_qt {
namespace {

constexpr int comboHeight = 26;
constexpr int comboWidth = 170;
constexpr int hintHeight = 16;
constexpr int iconSide = 16;

// The options list opens on what is installed and running at that moment.
class EditorComboBox final : public QComboBox {
 public:
  EditorComboBox(std::function<void()> beforePopup, QWidget* parent)
      : QComboBox(parent), beforePopup_(std::move(beforePopup)) {}

  void showPopup() override {
    beforePopup_();
    QComboBox::showPopup();
  }

 private:
  std::function<void()> beforePopup_;
};

QIcon iconFor(const std::string& name) {
  if (name.empty()) return {};
  const auto text = QString::fromStdString(name);
  if (QFileInfo(text).isAbsolute()) return QIcon(text);
  return QIcon::fromTheme(text);
}

}  // namespace

EditorRow::EditorRow(const CaptureOneFocus& editor, EditorChoice& choice, QWidget* parent)
    : QWidget(parent), editor_(editor), choice_(choice) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel(QStringLiteral("Éditeur"), this));
  row->addStretch();
  combo_ = new EditorComboBox([this] { fill(); }, this);
  combo_->setObjectName(QStringLiteral("editor"));
  combo_->setFixedSize(comboWidth, comboHeight);
  combo_->setIconSize(QSize(iconSide, iconSide));
  combo_->setFocusPolicy(Qt::NoFocus);
  row->addWidget(combo_);
  column->addLayout(row);
  hint_ = new QLabel(QStringLiteral("Choisissez votre éditeur : le bouton le suivra."), this);
  hint_->setFixedHeight(hintHeight);
  hint_->setStyleSheet(QStringLiteral("font-size: 10px;"));
  column->addWidget(hint_);
  fill();
  updateHint();
  connect(combo_, &QComboBox::activated, this, [this](int index) { picked(index); });
  choiceSubscription_ = choice_.observe([this] { updateHint(); });
}

void EditorRow::fill() {
  const QSignalBlocker quiet(combo_);
  combo_->clear();
  combo_->addItem(QStringLiteral("Automatique"), QString());
  const auto& rule = choice_.rule();
  const auto chosen = lowercased(rule.chosenName());
  int current = 0;
  for (const auto& option : editorOptions(editor_.workspace(), rule)) {
    const auto name = QString::fromStdString(option.name);
    combo_->addItem(iconFor(option.iconName), name, name);
    if (!rule.isAutomatic() && lowercased(option.name) == chosen) current = combo_->count() - 1;
  }
  combo_->setCurrentIndex(current);
}

void EditorRow::picked(int index) {
  choice_.choose(combo_->itemData(index).toString().toStdString());
}

void EditorRow::updateHint() {
  const bool wasShown = !hint_->isHidden();
  hint_->setVisible(!editor_.isEditorKnown());
  // Exactly its rows: the panel's spare height stays with the shortcut's rows, where it was.
  setFixedHeight(rowHeight());
  if (wasShown != !hint_->isHidden() && heightChanged_) heightChanged_();
}

int EditorRow::rowHeight() const {
  return comboHeight + (hint_->isHidden() ? 0 : hintHeight);
}

}  // namespace orlet::linux_qt
