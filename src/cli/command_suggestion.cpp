#include "cli/command_suggestion.h"

#include "base/format.h"
#include "base/translation.h"

#include <algorithm>

namespace tramline::cli {

std::size_t editDistance(std::string_view a, std::string_view b) {
    // Two neighbours typed the wrong way round ("lsit") count as one slip.
    const std::size_t columns = b.size() + 1;
    std::vector<std::size_t> d((a.size() + 1) * columns);
    const auto at = [&](std::size_t i, std::size_t j) -> std::size_t & {
        return d[i * columns + j];
    };
    for (std::size_t i = 0; i <= a.size(); ++i)
        at(i, 0) = i;
    for (std::size_t j = 0; j <= b.size(); ++j)
        at(0, j) = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
        }
    return at(a.size(), b.size());
}

std::string suggestSubcommand(CLI::App &app, const std::vector<std::string> &args) {
    CLI::App *current = &app;
    for (const std::string &word : args) {
        if (word.starts_with("-"))
            return {}; // options end the walk: their values are not commands
        const auto subcommands = current->get_subcommands([](CLI::App *) { return true; });
        if (subcommands.empty())
            return {};
        CLI::App *next = nullptr;
        for (CLI::App *sub : subcommands)
            if (sub->check_name(word))
                next = sub;
        if (next) {
            current = next;
            continue;
        }
        std::string best;
        std::size_t bestDistance = word.size();
        for (CLI::App *sub : subcommands) {
            const std::size_t d = editDistance(word, sub->get_name());
            if (d < bestDistance) {
                bestDistance = d;
                best = sub->get_name();
            }
        }
        if (best.empty() || bestDistance * 3 > std::max(best.size(), word.size()))
            return {};
        return format(tr("Did you mean \"%s\"?"), best.c_str());
    }
    return {};
}

} // namespace tramline::cli
