#include "data/new_diary/foods_csv.h"

#include "runtime/run_time_error.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>
#include <set>
#include <string_view>

namespace data {

namespace {

using runtime::ErrorNumber;
using runtime::RunTimeError;

[[noreturn]] void refuse(std::size_t line, const QString& what)
{
    throw RunTimeError(ErrorNumber::TypeMismatch, QStringLiteral("The food table cannot be read."),
                       QStringLiteral("Line %1: %2").arg(line).arg(what));
}

/// Splits CSV text into records of fields; quoted fields may hold commas, quotes and line ends.
class CsvReader
{
public:
    explicit CsvReader(std::string_view text) : text_(text) {}

    /// The next record, or none at the end. Empty lines are passed over.
    std::optional<std::vector<std::string>> next()
    {
        while (at_ < text_.size() && (text_[at_] == '\n' || text_[at_] == '\r')) {
            skipLineEnd();
        }
        if (at_ >= text_.size()) {
            return std::nullopt;
        }
        recordLine_ = line_;
        std::vector<std::string> fields;
        while (true) {
            fields.push_back(field());
            if (at_ < text_.size() && text_[at_] == ',') {
                ++at_;
                continue;
            }
            skipLineEnd();
            return fields;
        }
    }
    /// The line on which the last record began, counted from 1.
    [[nodiscard]] std::size_t line() const { return recordLine_; }

private:
    std::string field()
    {
        if (at_ >= text_.size() || text_[at_] != '"') {
            const std::size_t end = std::min(text_.find_first_of(",\r\n", at_), text_.size());
            std::string result(text_.substr(at_, end - at_));
            at_ = end;
            return result;
        }
        std::string result;
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] == '"') {
                ++at_;
                if (at_ >= text_.size() || text_[at_] != '"') {
                    if (at_ < text_.size() && text_[at_] != ',' && text_[at_] != '\r' && text_[at_] != '\n') {
                        refuse(recordLine_, QStringLiteral("text follows a closing quote"));
                    }
                    return result;
                }
            }
            line_ += text_[at_] == '\n' ? 1U : 0U;
            result.push_back(text_[at_]);
        }
        refuse(recordLine_, QStringLiteral("a quote is not closed"));
    }
    void skipLineEnd()
    {
        if (at_ < text_.size() && text_[at_] == '\r') {
            ++at_;
        }
        if (at_ < text_.size() && text_[at_] == '\n') {
            ++at_;
        }
        ++line_;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
    std::size_t recordLine_ = 1;
};

std::optional<double> figure(const std::string& text, const std::string& columnName, std::size_t line)
{
    if (text.empty()) {
        return std::nullopt;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
        refuse(line, QStringLiteral("\"%1\" in the column %2 is no number")
                         .arg(QString::fromStdString(text), QString::fromStdString(columnName)));
    }
    return value;
}

int foodNumber(const std::string& text, std::size_t line)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        refuse(line, QStringLiteral("\"%1\" is no food number").arg(QString::fromStdString(text)));
    }
    return value;
}

std::u16string wide(const std::string& text)
{
    return QString::fromStdString(text).toStdU16String();
}

std::optional<std::u16string> wideOrNone(const std::string& text)
{
    return text.empty() ? std::nullopt : std::optional(wide(text));
}

/// What a column's text does to the food of its line.
using Setter = std::function<void(Food&, const std::string& text, std::size_t line)>;

Setter setterFor(const std::string& name, FoodTable& table)
{
    static const std::map<std::string, std::optional<double> Food::*> figures{
        {"GmWt_1", &Food::measureGrams1}, {"GmWt_2", &Food::measureGrams2}, {"Refuse_Pct", &Food::refusePercent}};
    static const std::map<std::string, std::optional<std::u16string> Food::*> texts{{"GmWt_Desc1", &Food::measure1},
                                                                                    {"GmWt_Desc2", &Food::measure2}};
    if (name == "NDB_No") {
        return [](Food& food, const std::string& text, std::size_t line) { food.number = foodNumber(text, line); };
    }
    if (name == "Shrt_Desc") {
        return [](Food& food, const std::string& text, std::size_t) { food.description = wide(text); };
    }
    if (const auto found = figures.find(name); found != figures.end()) {
        return [name, member = found->second](Food& food, const std::string& text, std::size_t line) {
            food.*member = figure(text, name, line);
        };
    }
    if (const auto found = texts.find(name); found != texts.end()) {
        return [member = found->second](Food& food, const std::string& text, std::size_t) {
            food.*member = wideOrNone(text);
        };
    }
    table.nutrients.push_back(name);
    return [name](Food& food, const std::string& text, std::size_t line) {
        food.nutrients.push_back(figure(text, name, line));
    };
}

} // namespace

std::optional<std::size_t> FoodTable::nutrient(const std::string& name) const
{
    const auto found = std::find(nutrients.begin(), nutrients.end(), name);
    return found == nutrients.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - nutrients.begin()));
}

const std::vector<std::string>& requiredNutrients()
{
    static const std::vector<std::string> names{"Energ_Kcal", "Protein", "Tot_Lipid", "Carbohydrt", "Cholestrl"};
    return names;
}

FoodTable parseFoods(const std::string& csv)
{
    std::string_view text = csv;
    if (constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    CsvReader reader(text);
    const auto header = reader.next();
    if (!header) {
        refuse(1, QStringLiteral("the line with the columns' names is missing"));
    }

    FoodTable table;
    std::vector<Setter> setters;
    for (const std::string& name : *header) {
        if (name.empty() || std::count(header->begin(), header->end(), name) > 1) {
            refuse(1,
                   QStringLiteral("the column name \"%1\" is empty or occurs twice").arg(QString::fromStdString(name)));
        }
        setters.push_back(setterFor(name, table));
    }
    std::vector<std::string> needed = requiredNutrients();
    needed.insert(needed.end(), {"NDB_No", "Shrt_Desc"});
    for (const std::string& name : needed) {
        if (std::count(header->begin(), header->end(), name) == 0) {
            refuse(1, QStringLiteral("the column %1 is missing").arg(QString::fromStdString(name)));
        }
    }

    std::set<int> numbers;
    while (const auto record = reader.next()) {
        if (record->size() != setters.size()) {
            refuse(reader.line(),
                   QStringLiteral("%1 fields where %2 are expected").arg(record->size()).arg(setters.size()));
        }
        Food& food = table.foods.emplace_back();
        food.nutrients.reserve(table.nutrients.size());
        for (std::size_t i = 0; i < setters.size(); ++i) {
            setters[i](food, (*record)[i], reader.line());
        }
        if (!numbers.insert(food.number).second) {
            refuse(reader.line(), QStringLiteral("the food number %1 occurs twice").arg(food.number));
        }
    }
    return table;
}

FoodTable readFoods(const std::string& path)
{
    QFile file(QString::fromStdString(path));
    if (!file.exists()) {
        throw RunTimeError(ErrorNumber::FileNotFoundOnDisk, QStringLiteral("File not found"),
                           QStringLiteral("There is no food table at %1.").arg(file.fileName()));
    }
    const bool opened = file.open(QIODevice::ReadOnly);
    const QByteArray csv = opened ? file.readAll() : QByteArray();
    if (!opened || file.error() != QFileDevice::NoError) {
        throw RunTimeError(ErrorNumber::DiskError, QStringLiteral("Disk or network error."),
                           QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
    }
    return parseFoods(csv.toStdString());
}

} // namespace data
