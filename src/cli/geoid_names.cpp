#include "cli/geoid_names.h"

#include "base/folders.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "geodesy/geoid_grid.h"
#include "geodesy/geoid_model.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <memory>

namespace tramline::cli {

using namespace tramline::geodesy;

namespace {

constexpr const char *kMissingGridHint =
    trNoop("The grid %s is not in %s: copy it there, or convert a PROJ grid with "
           "\"tramline-cli geoid import SRC.gtx %s\"");

std::string withoutGrd(std::string name) {
    if (name.size() > 4 && equalsIgnoreCase(std::string_view(name).substr(name.size() - 4), ".grd"))
        name.resize(name.size() - 4);
    return name;
}

} // namespace

int geoidModelFromText(const std::string &text) {
    const std::string_view wanted = trim(text);
    int code = 0;
    const auto [end, ec] = std::from_chars(wanted.data(), wanted.data() + wanted.size(), code);
    if (ec == std::errc() && end == wanted.data() + wanted.size())
        return isGeoidModel(code) ? code : 0;
    const std::string bare = withoutGrd(std::string(wanted));
    for (int c = kFirstGeoidModel; c <= kLastGeoidModel; ++c)
        if (isGeoidModel(c) && equalsIgnoreCase(withoutGrd(geoidModelName(c)), bare))
            return c;
    return 0;
}

void reportGeoidFailure(CommandContext &ctx, const Status &status, int model,
                        const GeoidFolders &folders) {
    ctx.err << status.message << '\n';
    ctx.exitCode = kFailure;
    if (status.code != StatusCode::Download)
        return;
    for (const std::string &file : geoidModelFiles(model)) {
        // The message names the URL tried; the hint follows for that file.
        if (status.message.find(toLower(file)) == std::string::npos &&
            status.message.find(file) == std::string::npos)
            continue;
        const std::string target = (folders.dataFolder / file).string();
        ctx.err << format(tr(kMissingGridHint), file.c_str(), folders.dataFolder.string().c_str(),
                          target.c_str())
                << '\n';
        return;
    }
}

void addGeoidList(CLI::App &geoid, CommandContext &ctx) {
    auto *cmd = geoid.add_subcommand(
        "list", "Geoid models: code, name, grid files, and which of them are present");
    struct Options {
        std::string data;
        bool json = false;
    };
    auto o = std::make_shared<Options>();
    cmd->add_option("--data", o->data,
                    "The data folder holding the grids (default: the settings folder)");
    cmd->add_flag("--json", o->json, "Write a JSON array");
    cmd->callback([&ctx, o] {
        const std::filesystem::path folder =
            o->data.empty() ? settingsFolder() : std::filesystem::path(o->data);
        nlohmann::json models = nlohmann::json::array();
        for (int code = kFirstGeoidModel; code <= kLastGeoidModel; ++code) {
            if (!isGeoidModel(code))
                continue;
            nlohmann::json present = nlohmann::json::array(), missing = nlohmann::json::array();
            std::string files, area = "-";
            nlohmann::json bounds;
            for (const std::string &file : geoidModelFiles(code)) {
                std::error_code ec;
                const bool here = std::filesystem::exists(folder / file, ec) ||
                                  std::filesystem::exists(folder / "geoids" / file, ec);
                (here ? present : missing).push_back(file);
                GridBounds b;
                std::ifstream in(folder / file, std::ios::binary);
                if (here && bounds.is_null() && in && readGridBounds(in, b)) {
                    bounds = {
                        {"south", b.south}, {"west", b.west}, {"north", b.north}, {"east", b.east}};
                    area = format("%.4f %.4f %.4f %.4f", b.south, b.west, b.north, b.east);
                }
                files += (files.empty() ? "" : " ") + file + (here ? "" : "*");
            }
            if (o->json)
                models.push_back({{"code", code},
                                  {"name", geoidModelName(code)},
                                  {"present", present},
                                  {"missing", missing},
                                  {"area", bounds}});
            else
                ctx.out << code << '\t' << geoidModelName(code) << '\t' << files << '\t' << area
                        << '\n';
        }
        if (o->json)
            ctx.out << models.dump() << '\n';
    });
}

} // namespace tramline::cli
