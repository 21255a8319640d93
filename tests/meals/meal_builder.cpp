#include "meals/meal_builder.h"

#include "runtime/conversions.h"

namespace meals {

using testing_windows::handlePostedEvents;

MealBuilder::MealBuilder()
{
    clock.set(runtime::toDate(QStringLiteral("05/03/2024 12:30")));
    state.strPath = foods.path();
}

void MealBuilder::open()
{
    form.emplace(&owner, MealSurroundings{.clock = clock, .dialogs = dialogs, .printers = printers, .state = state});
    testing_windows::showActive(*form);
}

std::vector<std::string> MealBuilder::lines(const char* name)
{
    handlePostedEvents();
    const QAbstractItemModel& model = *list(name).model();
    std::vector<std::string> lines;
    for (int row = 0; row < model.rowCount(); ++row) {
        lines.push_back(model.index(row, 0).data().toString().toStdString());
    }
    return lines;
}

std::vector<std::string> MealBuilder::foodLines()
{
    std::vector<std::string> shown = lines("lstMeal");
    if (shown.size() == 3) {
        return {};
    }
    shown.erase(shown.begin(), shown.begin() + 2);
    shown.erase(shown.end() - 3, shown.end());
    return shown;
}

void MealBuilder::type(const char* name, const char* text)
{
    QTest::mouseClick(&field(name), Qt::LeftButton);
    field(name).selectAll();
    if (*text == '\0') {
        press(Qt::Key_Backspace);
    }
    typeOn(text);
}

QPoint MealBuilder::placeOf(const char* name, int line)
{
    handlePostedEvents();
    return list(name).visualRect(list(name).model()->index(line, 0)).center();
}

void MealBuilder::clickLine(const char* name, int line)
{
    QTest::mouseClick(list(name).viewport(), Qt::LeftButton, {}, placeOf(name, line));
}

void MealBuilder::doubleClickLine(const char* name, int line)
{
    clickLine(name, line);
    QTest::mouseDClick(list(name).viewport(), Qt::LeftButton, {}, placeOf(name, line)); // its second press
}

void MealBuilder::search(const char* text)
{
    type("txtSearch", text);
    press(Qt::Key_Return);
    handlePostedEvents(); // the results show
}

void MealBuilder::add(const char* searched, const char* grams)
{
    search(searched);
    clickLine("lstSearch", 0);
    typeOn(grams);
    press(Qt::Key_Return);
}

void MealBuilder::expectError(const std::string& beginning)
{
    EXPECT_CALL(dialogs, showError(&*form, testing::Truly([beginning](const QString& text) {
                    return text.toStdString().starts_with(beginning);
                }),
                                   QString("Quillon")));
}

void MealBuilder::expectMessage(const char* text, const char* title)
{
    EXPECT_CALL(dialogs, showMessage(&*form, QString(text), QString(title)));
}

} // namespace meals
