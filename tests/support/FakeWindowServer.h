#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/HandlerList.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

namespace orlet::test {

// A tiny window system: top-level windows in one stacking list, front to back, that panels and
// simulated applications share. A window of a higher level always stays in front of every
// window of a lower one, as floating panels do over normal windows. Windows are created hidden.
class FakeWindowServer final : public WindowServer {
 public:
  std::optional<std::vector<WindowInfo>> onScreenWindows() const override;
  std::vector<ScreenArea> screens() const override { return screenAreas; }
  Point pointerLocation() const override {
    ++pointerQueries;
    return lateReading.value_or(pointer_);
  }
  std::uint32_t pressedMouseButtons() const override { return buttons_; }
  [[nodiscard]] Subscription observePointerInput(std::function<void()> observer) const override {
    return inputObservers_.add(std::move(observer));
  }
  bool reportsPointerInput() const override { return reportsInput; }

  // Input from the user's hands: observers hear of it (unless `reportsInput` is off).
  void movePointer(Point location) {
    pointer_ = location;
    if (reportsInput) inputObservers_.call();
  }
  bool reportsInput = true;
  // The displays, main first; none unless a test sets them.
  std::vector<ScreenArea> screenAreas;
  mutable int pointerQueries = 0;  // how often the pointer was sampled
  // What samples read instead of where the pointer is: input still on its way to the reader.
  std::optional<Point> lateReading;
  // Where the pointer is, as the server itself knows it (not a sample).
  Point pointer() const { return pointer_; }
  void setPressedButtons(std::uint32_t buttons) {
    buttons_ = buttons;
    if (reportsInput) inputObservers_.call();
  }
  // Simulates a server that cannot hand out its window list.
  void setWindowListAvailable(bool available) { listAvailable_ = available; }

  WindowNumber createWindow(ProcessId owner, Rect bounds, int level = 0);
  // Creates a window, shows it and raises it: a window another application opens.
  WindowNumber openWindow(ProcessId owner, Rect bounds);
  void destroyWindow(WindowNumber number);

  void raise(WindowNumber number);  // shows it in front of its level
  void lower(WindowNumber number);  // shows it behind everything of its level
  // Shows `number` directly above `sibling`, or in front when there is no such sibling.
  void placeAbove(WindowNumber number, WindowNumber sibling);
  void hide(WindowNumber number);
  // Activation raises all of an application's windows, keeping their order.
  void raiseWindowsOf(ProcessId owner);

  bool isShown(WindowNumber number) const { return find(number) && find(number)->shown; }
  int level(WindowNumber number) const { return find(number) ? find(number)->level : 0; }
  void setLevel(WindowNumber number, int level);
  Rect bounds(WindowNumber number) const { return find(number) ? find(number)->bounds : Rect{}; }
  void setBounds(WindowNumber number, Rect bounds);
  // Entirely covered by one shown window in front of it.
  bool isCovered(WindowNumber number) const;

  // The shown windows, front to back.
  std::vector<WindowNumber> stacking() const;

 private:
  struct Window {
    WindowNumber number = 0;
    ProcessId owner = 0;
    Rect bounds;
    int level = 0;
    bool shown = false;
  };

  const Window* find(WindowNumber number) const;
  Window* find(WindowNumber number);
  // Takes `number` out of the list and puts it back shown at the index `at` gives.
  void reinsert(WindowNumber number, const std::function<std::size_t()>& at);
  void restack();

  std::vector<Window> windows_;  // front to back, hidden ones included
  WindowNumber nextNumber_ = 0x400001;
  Point pointer_;
  std::uint32_t buttons_ = 0;
  mutable HandlerList<> inputObservers_;
  bool listAvailable_ = true;
};

// The desktop's applications. Bringing one to the front raises its windows in the window server
// and tells the did-activate observers, at once, as a real desktop does when the user clicks it;
// activating the application already in front changes nothing.
class FakeWorkspace final : public Workspace {
 public:
  explicit FakeWorkspace(FakeWindowServer& server) : server_(server) {}

  std::optional<RunningApplication> frontmostApplication() const override { return front_; }
  std::vector<RunningApplication> runningApplications() const override { return running_; }
  std::vector<InstalledApplication> installedApplications() const override { return installed; }
  // Brings a running application to the front; anything else is ignored.
  void activate(const RunningApplication& app) override;
  std::optional<std::string> mainBundleIdentifier() const override { return ourIdentifier_; }
  Subscription observeDidActivateApplication(std::function<void()> handler) override {
    return didActivate_.add(std::move(handler));
  }

  void setOurIdentifier(std::optional<std::string> identifier) {
    ourIdentifier_ = std::move(identifier);
  }
  // Adds to the end of the running list.
  void launch(const RunningApplication& app) { running_.push_back(app); }
  // `app` becomes the front application (running or not), if it is not already.
  void bringToFront(const RunningApplication& app);
  // No application is active any more (the last active window closed).
  void clearFront();

  std::vector<InstalledApplication> installed;

 private:
  FakeWindowServer& server_;
  std::vector<RunningApplication> running_;
  std::optional<RunningApplication> front_;
  std::optional<std::string> ourIdentifier_;
  HandlerList<> didActivate_;
};

}  // namespace orlet::test
