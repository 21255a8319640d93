#include "data/engine/session.h"

#include "data/engine/diary_file.h"
#include "data/engine/error_translation.h"
#include "data/engine/value_conversion.h"

namespace data {

const SourceTable* FileCatalogue::table(const QString& name)
{
    const QString key = name.toLower();
    if (const auto found = tables_.constFind(key); found != tables_.constEnd()) {
        return found->get();
    }
    const std::string fileName = name.toStdString();
    if (!database_.hasTable(fileName)) {
        return nullptr;
    }
    jet::Table& source = database_.table(fileName);
    auto table = std::make_shared<SourceTable>();
    table->name = QString::fromStdString(source.name());
    table->sqlName = u't' + QString::number(tables_.size() + 1);
    for (const jet::Column* column : source.definition().displayOrder()) {
        table->columns.push_back(fieldOf(*column));
    }
    connection_.addTable(table->sqlName, source);
    return tables_.insert(key, std::move(table))->get();
}

std::optional<QString> FileCatalogue::query(const QString& name)
{
    if (!queries_) {
        readQueries();
    }
    const auto found = queries_->constFind(name.toLower());
    if (found == queries_->constEnd()) {
        return std::nullopt;
    }
    return QString::fromStdString(jet::sqlOf(*found));
}

void FileCatalogue::readQueries()
{
    QHash<QString, jet::SavedQuery> queries;
    for (jet::SavedQuery& query : database_.queries()) {
        const QString name = QString::fromStdString(query.name).toLower();
        queries.insert(name, std::move(query));
    }
    queries_ = std::move(queries);
}

Session::Session(const QString& path, jet::FileSystem& fileSystem)
    : path_(path), database_(translating(path, [&] { return openDiary(path, fileSystem); }))
{
}

void Session::close()
{
    workspace_.reset();
    database_.reset();
}

jet::Database& Session::database()
{
    if (database_ == nullptr) {
        throw runtime::RunTimeError(runtime::ErrorNumber::ObjectInvalid);
    }
    return *database_;
}

Session::Workspace& Session::workspace()
{
    jet::Database& file = database();
    if (workspace_ == nullptr || workspace_->version != file.catalogueVersion()) {
        workspace_.reset();
        workspace_ = std::make_unique<Workspace>(file);
    }
    return *workspace_;
}

FileCatalogue& Session::catalogue()
{
    return workspace().catalogue;
}

SqlConnection& Session::connection()
{
    return workspace().connection;
}

std::vector<qint64> Session::addresses(const SqlText& text)
{
    std::vector<qint64> result;
    connection().run(text, [&](const ResultRow& row) { result.push_back(row.wholeNumber(0)); });
    return result;
}

} // namespace data
