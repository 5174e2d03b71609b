#include "reduce/store_point_checks.h"

#include "base/format.h"
#include "base/text_hash.h"
#include "base/translation.h"

#include <cmath>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace tramline::reduce {

using raw::RawNode;
using raw::RecordType;

namespace {

const char *kChangeNotes = trNoop("&Change Store Point Records into Notes");
const char *kChangeSecondary = trNoop("&Change Secondary Store Point Records into Notes");
const char *kContinue = trNoop("Continue &Processing");
const char *kReport = trNoop("&Report");
const char *kReturn = trNoop("Return To &Editor");

int ask(Interaction &ui, const char *title, const std::string &text,
        std::vector<std::string> buttons) {
    std::vector<std::string> shown;
    for (const auto &b : buttons)
        shown.push_back(tr(b.c_str()));
    return ui.choose(tr(title), text, shown);
}

void turnIntoNote(RawNode &node) {
    const std::string text = "--" + storePointNote(node);
    node = RawNode{};
    node.type = RecordType::Text;
    node.text = text;
}

// The two store point dialogs: turn the listed records into notes and go
// on, go on, report (under the dialog's title) and go back, or go back.
CheckOutcome answer(CheckContext &context, const char *title, const std::string &text,
                    const char *changeButton, const std::vector<size_t> &records,
                    const std::string &report) {
    switch (ask(context.ui, title, text, {changeButton, kContinue, kReport, kReturn})) {
    case 0:
        for (size_t i : records)
            turnIntoNote(context.file.nodes[i]);
        context.rawChanged = true;
        return CheckOutcome::Continue;
    case 1:
        return CheckOutcome::Continue;
    case 2:
        context.report.append(tr(title), report);
        return CheckOutcome::ReturnToEditor;
    default:
        return CheckOutcome::ReturnToEditor;
    }
}

bool isStored(crd::CoordinateFile &coordinates, const std::string &name) {
    crd::CrdPoint p;
    return !name.empty() &&
           coordinates.readPoint(name, p, crd::PointSearch::Exact, crd::Verbosity::Quiet);
}

} // namespace

std::string storePointNote(const RawNode &node) {
    auto field = [&](size_t i) { return i < node.fields.size() ? node.fields[i] : std::string{}; };
    double n = 0, e = 0, z = 0;
    parseNumber(field(1), n);
    parseNumber(field(2), e);
    parseNumber(field(3), z);
    std::string text =
        format("SP%s,N %.4f,E %.4f,EL%.4f,--%s", field(0).c_str(), n, e, z, field(4).c_str());
    if (text.size() > 256)
        text.resize(256);
    return text;
}

CheckOutcome storePointCheck(CheckContext &context) {
    raw::RawFile &file = context.file;
    // Only the names of store points matter: look for shots to those.
    TextMap<long> measured; // store point name -> first shot to it
    for (const auto &n : file.nodes)
        if (n.type == RecordType::StorePoint && !n.fields.empty())
            measured.emplace(n.fields[0], 0);
    std::vector<size_t> conflicts;
    std::string list;
    for (size_t i = 0; i < file.nodes.size() && !measured.empty(); ++i) {
        const RawNode &n = file.nodes[i];
        if (n.type == RecordType::Observation) {
            const auto it = measured.find(n.observation.foresight);
            if (it != measured.end() && it->second == 0)
                it->second = static_cast<long>(n.lineNumber);
        } else if (n.type == RecordType::StorePoint && !n.fields.empty() &&
                   measured[n.fields[0]] != 0) {
            conflicts.push_back(i);
            appendFormat(list, "\n%-9.9s %-14.14s %s", n.fields[0].c_str(),
                         std::to_string(measured[n.fields[0]]).c_str(),
                         std::to_string(n.lineNumber).c_str());
        }
    }
    if (conflicts.empty())
        return CheckOutcome::Continue;
    std::string text = std::string(tr("Warning: Store Point records found after Measurement")) +
                       "\n" + tr("records with same point numbers as Measurement foresights.") +
                       "\n" + tr("The final CRD file coordinates will be from the last point") +
                       "\n" + tr("number record in the raw file.") + "\n\n" +
                       tr("Point ID  Measure Line#  Store Line#") + list;
    std::string report = format("\n%s: %s\n", tr("Raw File"), context.rawFileName.c_str());
    appendFormat(report, "\n%-9.9s %-14.14s %s", tr("Point ID"), tr("Measure Line#"),
                 tr("Store Line#"));
    return answer(context, trNoop("Store Point Check"), text, kChangeNotes, conflicts,
                  report + list + "\n");
}

CheckOutcome storePointConflicts(CheckContext &context) {
    raw::RawFile &file = context.file;
    std::map<std::string, size_t> first;
    std::vector<size_t> secondary;
    std::string list;
    for (size_t i = 0; i < file.nodes.size(); ++i) {
        const RawNode &n = file.nodes[i];
        if (n.type != RecordType::StorePoint || n.fields.size() < 3)
            continue;
        const auto [it, isNew] = first.emplace(n.fields[0], i);
        if (isNew)
            continue;
        const RawNode &a = file.nodes[it->second];
        auto same = [&](size_t f) {
            double x = 0, y = 0;
            const bool hx = f < a.fields.size() && parseNumber(a.fields[f], x);
            const bool hy = f < n.fields.size() && parseNumber(n.fields[f], y);
            return hx == hy && std::fabs(x - y) < 0.00005;
        };
        if (same(1) && same(2) && same(3))
            continue;
        secondary.push_back(i);
        appendFormat(list, "\n%-9.9s %ld,%ld", n.fields[0].c_str(), static_cast<long>(a.lineNumber),
                     static_cast<long>(n.lineNumber));
    }
    if (secondary.empty())
        return CheckOutcome::Continue;
    const std::string text =
        std::string(tr("Warning: Multiple Store Point records to same point number")) + "\n" +
        tr("with different coordinates.") + "\n\n" + tr("Point ID  Store Line #'s") + list;
    return answer(context, trNoop("Store Point Conflicts"), text, kChangeSecondary, secondary,
                  format("\n%s: %s\n", tr("Raw File"), context.rawFileName.c_str()) +
                      tr("Point ID  Store Line #'s") + list + "\n");
}

CheckOutcome pointProtect(CheckContext &context, crd::CoordinateFile &coordinates) {
    const raw::RawFile &file = context.file;
    if (!coordinates.isOpen() || coordinates.highestName().empty())
        return CheckOutcome::Continue; // an empty coordinate file protects nothing
    std::string list;
    int count = 0;
    std::unordered_set<std::string> seen;
    for (const auto &n : file.nodes) {
        std::string name;
        const char *kind = nullptr;
        if (n.type == RecordType::StorePoint && !n.fields.empty()) {
            name = n.fields[0];
            kind = tr("Store Point");
        } else if (n.type == RecordType::Observation &&
                   !(n.observation.isAngleBalance() && !n.observation.isTraverseSide())) {
            name = n.observation.foresight;
            kind = tr("ForeSight Point");
        }
        if (!kind || !seen.insert(name).second || !isStored(coordinates, name))
            continue;
        ++count;
        appendFormat(list, "%s: %s %s: %ld\n", kind, name.c_str(), tr("Line"),
                     static_cast<long>(n.lineNumber));
    }
    if (count == 0)
        return CheckOutcome::Continue;
    const std::string text = std::string(tr("Duplicate Point Numbers")) + "\n\n" + list;
    switch (ask(context.ui, trNoop("Point Protect"), text, {kContinue, kReport, kReturn})) {
    case 0:
        return CheckOutcome::Continue;
    case 1: {
        std::string report = std::string(tr("Duplicate points in RW5 and CRD File")) + "\n";
        appendFormat(report, "\n%s: %s", tr("Raw File"), context.rawFileName.c_str());
        appendFormat(report, "\nCRD %s: %s\n", tr("File"), coordinates.path().string().c_str());
        report += list;
        appendFormat(report, "\n%s: %d\n", tr("Duplicate Point Numbers"), count);
        context.report.append(tr("Point Protect"), report);
        return CheckOutcome::ReturnToEditor;
    }
    default:
        return CheckOutcome::ReturnToEditor;
    }
}

} // namespace tramline::reduce
