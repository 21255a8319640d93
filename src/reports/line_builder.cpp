#include "reports/line_builder.h"

namespace reports {

LineBuilder& LineBuilder::tab()
{
    line_ += u'\t';
    return *this;
}

LineBuilder& LineBuilder::add(QStringView text)
{
    line_ += text;
    return *this;
}

LineBuilder& LineBuilder::add(double number, const runtime::NumberPattern& pattern)
{
    pattern.append(line_, number);
    return *this;
}

LineBuilder& LineBuilder::add(const runtime::Value& value, const runtime::NumberPattern& pattern)
{
    pattern.append(line_, value);
    return *this;
}

LineBuilder& LineBuilder::add(runtime::Date date, const runtime::DatePattern& pattern)
{
    pattern.append(line_, date);
    return *this;
}

void LineBuilder::finish(int style)
{
    list_.addItem(QString(line_.constData(), line_.size()), style); // a copy, so that the buffer stays ours
    line_.resize(0);
}

} // namespace reports
