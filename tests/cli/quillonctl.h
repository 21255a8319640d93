// Runs the real program.
#pragma once

#include <QStringList>

#include <functional>
#include <string>
#include <vector>

struct Outcome {
    int status = -1; ///< -1: it did not run, or did not end by itself
    std::string out;
    std::string err;
};

struct Circumstances {
    QString locale = QStringLiteral("C.UTF-8");
    std::function<void()> beforeStart; ///< in the new process; only system calls are allowed there
};

Outcome quillonctl(const QStringList& arguments, const Circumstances& circumstances = {});

/// The lines of a text that ends in a line feed.
std::vector<std::string> linesOf(const std::string& text);
