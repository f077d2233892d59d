// Exit statuses of the commands.
#pragma once

namespace vort {

constexpr int kDone = 0;
constexpr int kMisused = 2;  // the command line
constexpr int kUnusableInput = 3;
constexpr int kLackOfResources = 4;  // memory, disk, or another resource is gone
constexpr int kSignalled = 128;      // plus the signal's number

}  // namespace vort
