#include "meals/known_foods.h"

#include "data/new_diary/diary_builder.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

/// Makes a diary with these foods in the folder; returns its path.
QString diaryWith(const QTemporaryDir& folder, const QByteArray& foods)
{
    QFile csv(folder.filePath(QStringLiteral("foods.csv")));
    EXPECT_TRUE(csv.open(QIODevice::WriteOnly));
    csv.write("NDB_No,Shrt_Desc,Carbohydrt,Tot_Lipid,Protein,Energ_Kcal,Cholestrl\n" + foods);
    csv.close();
    const QString path = folder.filePath(QStringLiteral("Nutrition.mdb"));
    data::createDiary({path, csv.fileName(), 0}, runtime::FixedClock(runtime::Date{46000}));
    return path;
}

QByteArray described(const QStringList& descriptions)
{
    QByteArray foods;
    for (qsizetype i = 0; i < descriptions.size(); ++i) {
        foods += QByteArray::number(i + 1) + ",\"" + QString(descriptions.at(i)).replace(u'"', "\"\"").toUtf8() +
                 "\",1,1,1,1,1\n";
    }
    return foods;
}

} // namespace

KnownFoods::KnownFoods()
    : path_(diaryWith(folder_, "1001,\"BUTTER,WITH SALT\",0.06,81.11,0.85,717,215\n"
                               "2001,\"RICE,WHITE,CKD\",20,1,2,100,\n"
                               "3001,OATMEAL COOKIES,50,10,6,300,5\n"
                               "4001,\"WATER,TAP\",0,0,0,0,\n"
                               "5001,NOBODY KNOWS,,,,,\n"
                               "6001,\"EGGS,BOILED\",0,10,13,150,400\n"))
{
}

DescribedFoods::DescribedFoods(const QStringList& descriptions) : path_(diaryWith(folder_, described(descriptions))) {}
