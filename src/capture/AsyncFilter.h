#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orlet {

// An asynchronous predicate: answers by calling `resume` once, now or later.
template <class T>
using AsyncPredicate = std::function<void(const T& element, std::function<void(bool)> resume)>;

namespace detail {

template <class T>
struct FilterState {
  std::vector<T> elements;
  AsyncPredicate<T> predicate;
  std::function<void(std::vector<T>)> completion;
  std::vector<T> kept;
  std::size_t next = 0;
  bool looping = false;
  bool resumedInLoop = false;
};

// Tests elements until one answers later; that answer calls filterStep again. Only the pending
// resume holds the state, so a resume that is dropped ends the filter without a leak.
template <class T>
void filterStep(const std::shared_ptr<FilterState<T>>& state) {
  state->looping = true;
  while (state->next < state->elements.size()) {
    state->resumedInLoop = false;
    auto once = std::make_shared<bool>(false);
    state->predicate(state->elements[state->next], [state, once](bool keep) {
      if (std::exchange(*once, true)) return;
      if (keep) state->kept.push_back(state->elements[state->next]);
      ++state->next;
      if (state->looping) {
        state->resumedInLoop = true;
      } else {
        filterStep(state);
      }
    });
    if (!state->resumedInLoop) {
      state->looping = false;
      return;
    }
  }
  state->looping = false;
  if (auto completion = std::exchange(state->completion, nullptr)) {
    completion(std::move(state->kept));
  }
}

}  // namespace detail

// Keeps the elements `predicate` accepts, in order, testing one element at a time: the next
// test starts only after the previous one resumed. `completion` gets the kept elements. A
// predicate that resumes at once does not grow the stack; a second resume is ignored.
template <class T>
void asyncFilter(std::vector<T> elements, AsyncPredicate<T> predicate,
                 std::function<void(std::vector<T>)> completion) {
  auto state = std::make_shared<detail::FilterState<T>>();
  state->elements = std::move(elements);
  state->predicate = std::move(predicate);
  state->completion = std::move(completion);
  detail::filterStep(state);
}

}  // namespace orlet
