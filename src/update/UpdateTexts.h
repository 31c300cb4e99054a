#pragma once

#include <cstdint>
#include <string>

#include "platform/UpdateUserDriver.h"
#include "update/ArchiveVerification.h"

namespace orlet::update_texts {

// The update window's French texts, one function per step.
UpdateScreen checking();
UpdateScreen upToDate(const std::string& running);
UpdateScreen available(const std::string& offered, const std::string& running);
UpdateScreen availableFromSystem(const std::string& offered, const std::string& running);
UpdateScreen downloading(std::uint64_t received, std::uint64_t total);
UpdateScreen verifying();
UpdateScreen installing();
UpdateScreen ready(const std::string& installed);
UpdateScreen failed(std::string message);

// Why a check or an update stopped, in the operator's words.
std::string notUpdatable();
std::string noFeed(bool fromSystem);
std::string feedUnreachable(const std::string& detail);
std::string feedUnreadable();
std::string offerInvalid();
std::string downloadFailed(const std::string& detail);
std::string refused(Verdict verdict, std::uint64_t received, std::uint64_t announced);
std::string installFailed(const std::string& detail);

}  // namespace orlet::update_texts
