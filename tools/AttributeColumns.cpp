#include "tools/AttributeColumns.h"

#include <limits>
#include <utility>

#include "tools/parsing.h"

namespace tool {

void AttributeColumns::add(std::size_t column, const std::string& name) {
    sources.push_back({column, true, false});
    attributes.push_back({name, {}});
}

void AttributeColumns::take(const std::vector<std::string_view>& columns) {
    for (std::size_t i = 0; i < sources.size(); ++i) {
        Source& source = sources[i];
        if (!source.bNumeric) continue;
        double value = std::numeric_limits<double>::quiet_NaN();
        if (source.column < columns.size() && !columns[source.column].empty()) {
            source.bNumeric = parseAnyNumber(columns[source.column], value);
            source.bAnyNumber = true;
        }
        attributes[i].values.push_back(value);
    }
}

void AttributeColumns::moveTo(PointSet& set) {
    for (std::size_t i = 0; i < sources.size(); ++i)
        if (!sources[i].bNumeric)
            set.textColumns.push_back(attributes[i].name);
        else if (sources[i].bAnyNumber)
            set.attributes.push_back(std::move(attributes[i]));
}

}  // namespace tool
