// What all tests of windows need.
#pragma once

#include <QLineEdit>
#include <QString>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

namespace testing_windows {

/// Shows a window and waits until it is active, as it is when a user works in it.
void showActive(QWidget& window);

/// The child of that name; the test fails where there is none.
template <typename Control>
[[nodiscard]] Control& child(const QObject& parent, const char* name)
{
    auto* found = parent.findChild<Control*>(QLatin1String(name));
    if (found == nullptr) {
        throw std::invalid_argument(std::string("no control of this kind is called ") + name);
    }
    return *found;
}

/// Types over the text that the field holds. A system that calls a dialog active before its field has the focus makes
/// no difference to it.
void typeOver(QLineEdit& field, const QString& text);

/// Handles what has been posted until now, such as a box that opens after a click.
void handlePostedEvents();

/// Calls `act` with the modal window that the next step opens, once it is there, and closes it afterwards if `act` has
/// not.
void whenModal(std::function<void(QWidget& modal)> act);

} // namespace testing_windows
