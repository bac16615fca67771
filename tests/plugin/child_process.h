// Runs part of a test in a process of its own: what a process does once, such as choosing its language, can
// so be tested several times.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

// What the body returned when run in a child process under the locale; a child that crashed fails the test.
inline std::string runInChild(const std::string& locale, const std::function<std::string()>& body) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        setenv("LC_ALL", locale.c_str(), 1);
        const std::string result = body();
        const bool written =
            write(ends[1], result.data(), result.size()) == static_cast<ssize_t>(result.size());
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    std::string result;
    char buffer[4096];
    for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
        result.append(buffer, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the child process under " << locale << " came to grief";
    return result;
}
