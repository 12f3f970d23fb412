#ifndef OVELIN_PROBE_MARK_H
#define OVELIN_PROBE_MARK_H

#include <unistd.h>

#include <string>

// Marks the beginning and the end of an action in the emulator's log, which lists each system call with its
// arguments. The two system calls ask for files that do not exist. Both file names are made before the action, so
// only the action and the two calls are counted. The count of an empty action is the share of the two calls.
template<typename Action>
void markAction(const std::string &name, const Action &action)
{
    const std::string begin = "ovelin-cost:begin " + name;
    const std::string end = "ovelin-cost:end " + name;
    static_cast<void>(access(begin.c_str(), F_OK));
    action();
    static_cast<void>(access(end.c_str(), F_OK));
}

#endif
