// Boxes for tests: nothing opens, the test says which box it expects and what is answered. Used as a StrictMock, so
// that a box that nobody expects fails the test.
#pragma once

#include "controls/dialogs.h"

#include <gmock/gmock.h>

#include <ostream>

namespace controls {

class MockDialogs : public Dialogs
{
public:
    MOCK_METHOD(void, beep, (), (override));
    MOCK_METHOD(void, showMessage, (QWidget * owner, const QString& text, const QString& title), (override));
    MOCK_METHOD(void, showError, (QWidget * owner, const QString& text, const QString& title), (override));
    MOCK_METHOD(QString, askText, (QWidget * owner, const QString& prompt, const QString& proposal), (override));
    MOCK_METHOD(QString, askSavePath,
                (QWidget * owner, const QString& prompt, const QString& proposal, const QString& filter), (override));
};

using StrictDialogs = testing::StrictMock<MockDialogs>;

} // namespace controls

inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}
