#include "app/apNearest.h"

#include <algorithm>

namespace Zu
{

namespace
{

bool areSame(char a, char b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return lower(a) == lower(b);
}

} // namespace

std::size_t apDistance(std::string_view a, std::string_view b)
{
    // Three rows of the table: of the characters before the last two of `a`, the last one, and now.
    std::vector<std::size_t> older(b.size() + 1);
    std::vector<std::size_t> old(b.size() + 1);
    std::vector<std::size_t> now(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) now[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        older.swap(old);
        old.swap(now);
        now[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const std::size_t replaced = old[j - 1] + (areSame(a[i - 1], b[j - 1]) ? 0 : 1);
            now[j] = std::min({old[j] + 1, now[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && areSame(a[i - 1], b[j - 2]) && areSame(a[i - 2], b[j - 1]))
                now[j] = std::min(now[j], older[j - 2] + 1);
        }
    }
    return now[b.size()];
}

std::string apNearest(std::string_view text, const std::vector<std::string>& names)
{
    std::string nearest;
    std::size_t least = text.size() + 1;
    for (const std::string& name : names)
    {
        const std::size_t distance = apDistance(text, name);
        const std::size_t longer = std::max(text.size(), name.size());
        if (distance >= least || distance > std::max<std::size_t>(longer / 3, 1) ||
            distance >= longer)
            continue;
        least = distance;
        nearest = name;
    }
    return nearest;
}

std::string apDidYouMean(std::string_view text, const std::vector<std::string>& names)
{
    const std::string nearest = apNearest(text, names);
    return nearest.empty() ? nearest : "; did you mean '" + nearest + "'?";
}

} // namespace Zu
