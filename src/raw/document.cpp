#include "raw/document.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/status_text.h"
#include "base/text.h"
#include "base/translation.h"
#include "raw/angle_math.h"
#include "raw/classify.h"
#include "raw/writer.h"

#include <cmath>
#include <fstream>

namespace tramline::raw {

namespace {

const std::vector<std::string> kRowTypes = {
    "TR", "SS", "HI",  "BK",  "PT",  "DS",   "CL",  "AB", "CL+AB", "FD", "FR", "BD", "BR",
    "EL", "AZ", "CSE", "SSE", "MSE", "NAME", "GPS", "BP", "G0",    "G1", "G2", "G3", "DO"};

const std::vector<std::string> kAngleCodes = {"NE", "SE", "SW", "NW", "AZ",
                                              "AR", "AL", "DR", "DL", "GN"};

bool isObservationRow(const std::string &type) {
    return isObservationType(type);
}

std::string fixed(double value, int decimals) {
    return format("%.*f", decimals, value);
}

// A cell's number, or nothing when the text is empty or not a number.
std::optional<double> cellNumber(const std::string &text) {
    double v;
    if (parseNumber(text, v))
        return v;
    return std::nullopt;
}

// Reformats a numeric text with the grid's format; other text is kept.
std::string reformat(const std::string &text, int decimals) {
    const auto v = cellNumber(text);
    return v ? fixed(*v, decimals) : text;
}

std::string formatAngle(double decimalDegrees, AngleUnit unit) {
    return unit == AngleUnit::Gons ? fixed(degreesToGons(decimalDegrees), 4)
                                   : formatDms(decimalDegrees, 4);
}

// An angle cell as the grid shows it: rounded to the second with carry.
std::string reformatAngle(const std::string &text, AngleUnit unit) {
    const auto v = cellNumber(text);
    return v ? formatAngle(angleToDegrees(*v, unit), unit) : text;
}

} // namespace

const std::vector<std::string> &rowTypes() {
    return kRowTypes;
}
const std::vector<std::string> &angleCodes() {
    return kAngleCodes;
}

RawDocument::RawDocument() = default;

void RawDocument::clear() {
    m_rows.clear();
    m_path.clear();
    m_units = RawUnits{};
    m_modified = false;
}

std::string RawDocument::fileName() const {
    return m_path.empty() ? "NONE" : m_path.string();
}

std::vector<std::string> RawDocument::captions(const std::string &type) const {
    if (isObservationRow(type)) {
        const char *vertical = trNoop("VertAng");
        switch (m_modes.verticalMode()) {
        case VerticalMode::Zenith:
            vertical = trNoop("ZenithAng");
            break;
        case VerticalMode::ElevationDifference:
            vertical = trNoop("ElevDiff");
            break;
        case VerticalMode::VerticalAngle:
        case VerticalMode::None:
            break;
        }
        const char *distance = m_modes.distanceMode() == DistanceMode::Horizontal
                                   ? trNoop("HorzDist")
                                   : trNoop("SlopeDist");
        return {trNoop("OcPt"), trNoop("FsPt"), trNoop("Code"),       trNoop("HorzAngle"),
                vertical,       distance,       trNoop("Description")};
    }
    if (type == "HI")
        return {trNoop("InstHt"), trNoop("RodHt")};
    if (type == "BK")
        return {trNoop("OcPt"), trNoop("BsPt"), trNoop("SetAzi"), trNoop("BsCircle")};
    if (type == "PT")
        return {trNoop("PntNo"), trNoop("Northing"), trNoop("Easting"), trNoop("Elevation"),
                trNoop("Description")};
    if (type == "GPS" || type == "BP")
        return {trNoop("PntNo"), trNoop("Latitude"), trNoop("Longitude"), trNoop("Elevation"),
                trNoop("Description")};
    if (type == "EL")
        return {trNoop("PntNo"), trNoop("Elevation")};
    if (type == "AZ")
        return {trNoop("OcPt"), trNoop("FsPt"), trNoop("SetAzi")};
    if (type == "CSE")
        return {trNoop("Northing"), trNoop("Easting"), trNoop("Elevation"), trNoop("Azimuth(sec)")};
    if (type == "SSE")
        return {trNoop("Rod Ctr"), trNoop("Inst Ctr"), trNoop("Inst Hgt"), trNoop("Rod Hgt")};
    if (type == "MSE")
        return {trNoop("HA Pt(sec)"), trNoop("HA Rd(sec)"), trNoop("VA Pt(sec)"),
                trNoop("VA Rd(sec)"), trNoop("Distance"),   trNoop("Dist PPM")};
    if (type == "NAME")
        return {trNoop("Traverse Name")};
    if (type == "DO")
        return {trNoop("Data On/Off")};
    if (type == "G0" || type == "G1" || type == "G2" || type == "G3")
        return {trNoop("GPS Vector")};
    if (type == "DS")
        return {trNoop("Record")};
    return {trNoop("Note")};
}

// --- filling rows from records ----------------------------------------------

RawRow RawDocument::rowFromNode(const RawNode &node) const {
    RawRow row;
    const AngleUnit unit = m_units.angle;
    auto field = [&](size_t i) -> std::string {
        return i < node.fields.size() ? node.fields[i] : std::string{};
    };
    switch (node.type) {
    case RecordType::Observation: {
        const Observation &o = node.observation;
        row.type = o.type;
        row.cells.resize(7);
        row.cells[kOccupiedCell] = o.occupied;
        row.cells[kForesightCell] = o.foresight;
        row.cells[kCodeCell] = horizontalKindName(o.horizontalKind);
        if (row.cells[kCodeCell].empty())
            row.cells[kCodeCell] = "AR";
        row.cells[kHorizontalCell] =
            o.hasHorizontal ? formatAngle(angleToDegrees(o.horizontal, unit), unit) : field(2);
        const double vaDegrees = angleToDegrees(o.verticalAngle, unit);
        if (o.hasVertical) {
            switch (m_modes.verticalMode()) {
            case VerticalMode::Zenith:
                row.cells[kVerticalCell] = formatAngle(90.0 - vaDegrees, unit);
                break;
            case VerticalMode::ElevationDifference:
                row.cells[kVerticalCell] =
                    o.hasDistance ? fixed(o.slopeDistance * std::sin(radians(vaDegrees)), 4)
                                  : std::string{};
                break;
            case VerticalMode::VerticalAngle:
            case VerticalMode::None:
                row.cells[kVerticalCell] = formatAngle(vaDegrees, unit);
                break;
            }
        } else {
            row.cells[kVerticalCell] = field(3);
        }
        if (o.hasDistance) {
            const double d =
                m_modes.distanceMode() == DistanceMode::Horizontal
                    ? o.slopeDistance * std::cos(radians(o.hasVertical ? vaDegrees : 0.0))
                    : o.slopeDistance;
            row.cells[kDistanceCell] = fixed(std::fabs(d), 3);
        } else {
            row.cells[kDistanceCell] = field(4);
        }
        row.cells[kDescriptionCell] = o.description;
        break;
    }
    case RecordType::StorePoint:
        row.type = "PT";
        row.cells = {field(0), reformat(field(1), 4), reformat(field(2), 4), reformat(field(3), 4),
                     field(4)};
        break;
    case RecordType::Backsight:
        row.type = "BK";
        row.cells = {field(0), field(1), reformatAngle(field(2), unit),
                     reformatAngle(field(3), unit)};
        break;
    case RecordType::Heights:
        row.type = "HI";
        row.cells = {node.hasHi ? reformat(field(0), 3) : std::string{},
                     node.hasHr ? reformat(field(1), 3) : std::string{}};
        break;
    case RecordType::TraverseName:
        row.type = "NAME";
        row.cells = {field(0)};
        break;
    case RecordType::GpsPosition:
    case RecordType::BasePoint:
        row.type = node.type == RecordType::GpsPosition ? "GPS" : "BP";
        row.cells = {field(0), reformat(field(1), 9), reformat(field(2), 9), reformat(field(3), 4),
                     field(4)};
        break;
    case RecordType::ControlErrors:
        row.type = "CSE";
        row.cells = {field(0), field(1), field(2), field(3)};
        break;
    case RecordType::SetupErrors:
        row.type = "SSE";
        row.cells = {field(0), field(1), field(2), field(3)};
        break;
    case RecordType::MeasurementErrors:
        row.type = "MSE";
        row.cells = {field(0), field(1), field(2), field(3), field(4), field(5)};
        break;
    case RecordType::ReferenceAzimuth:
        row.type = "AZ";
        row.cells = {field(0), field(1), reformatAngle(field(2), unit)};
        break;
    case RecordType::Elevation:
        row.type = "EL";
        row.cells = {field(0), reformat(field(1), 4)};
        break;
    case RecordType::GpsVector:
        row.type = node.name;
        row.cells = {field(0)};
        break;
    case RecordType::DataOnOff:
        row.type = "DO";
        row.cells = {"Data On/Off"};
        break;
    case RecordType::Occupy:
        row.type = "DS";
        row.cells = {node.text.str()};
        break;
    case RecordType::Text:
        if (node.text.starts_with("--")) {
            row.type.clear();
            row.cells = {std::string(node.text.view().substr(2))};
        } else {
            row.type = "DS";
            row.cells = {node.text.str()};
        }
        break;
    }
    return row;
}

std::vector<RawRow> RawDocument::rowsFromFile(const RawFile &file, RawFlavour flavour) const {
    std::vector<RawRow> rows;
    rows.reserve(file.nodes.size());
    for (const auto &node : file.nodes) {
        if (flavour == RawFlavour::Tds && node.type == RecordType::Text &&
            (node.text.starts_with("JB,") || node.text.starts_with("MO,")))
            continue;
        rows.push_back(rowFromNode(node));
    }
    return rows;
}

void RawDocument::load(const RawFile &file) {
    m_units = file.units;
    m_rows = rowsFromFile(file, RawFlavour::Rw5);
    m_modified = false;
}

bool RawDocument::open(const std::filesystem::path &path, Interaction &ui) {
    RawFile file;
    if (const Status status = readRawFile(path, file); !status) {
        ui.message(statusText(status));
        return false;
    }
    load(file);
    m_path = path;
    return true;
}

// --- writing -----------------------------------------------------------------

std::string RawDocument::lineFor(const RawRow &row) const {
    auto cell = [&](size_t i) -> std::string_view {
        return i < row.cells.size() ? std::string_view(row.cells[i]) : std::string_view{};
    };
    const std::string &t = row.type;
    if (isObservationRow(t)) {
        VerticalKind v = VerticalKind::VA;
        switch (m_modes.verticalMode()) {
        case VerticalMode::Zenith:
            v = VerticalKind::ZE;
            break;
        case VerticalMode::ElevationDifference:
            v = VerticalKind::CE;
            break;
        case VerticalMode::VerticalAngle:
        case VerticalMode::None:
            break;
        }
        const DistanceKind d = m_modes.distanceMode() == DistanceMode::Horizontal
                                   ? DistanceKind::Horizontal
                                   : DistanceKind::Slope;
        HorizontalKind h = horizontalKindFromName(cell(kCodeCell));
        if (h == HorizontalKind::None)
            h = HorizontalKind::AR;
        return writeObservation(t, cell(kOccupiedCell), cell(kForesightCell), h,
                                cell(kHorizontalCell), v, cell(kVerticalCell), d,
                                cell(kDistanceCell), cell(kDescriptionCell));
    }
    if (t == "BK")
        return writeBacksight(cell(0), cell(1), cell(2), cell(3));
    if (t == "HI") {
        if (!cell(0).empty() && cell(1).empty())
            return writeInstrumentHeight(cell(0));
        if (cell(0).empty() && !cell(1).empty())
            return writeRodHeight(cell(1));
        return writeHeights(cell(0), cell(1));
    }
    if (t == "PT")
        return writeStorePoint(cell(0), cell(1), cell(2), cell(3), cell(4));
    if (t == "GPS")
        return writeGps(cell(0), cell(1), cell(2), cell(3), cell(4));
    if (t == "BP") {
        // A base point read with its extra fields holds them, from "AG" on,
        // in its last cell.
        if (cell(4).starts_with("AG"))
            return writeBasePointExtra(cell(0), cell(1), cell(2), cell(3), cell(4));
        return writeBasePoint(cell(0), cell(1), cell(2), cell(3), cell(4));
    }
    if (t == "NAME")
        return writeTraverseName(cell(0));
    if (t == "EL")
        return writeElevation(cell(0), cell(1));
    if (t == "AZ")
        return writeReferenceAzimuth(cell(0), cell(1), cell(2));
    if (t == "DO")
        return writeDataOnOff();
    if (t == "CSE")
        return writeControlErrors(cell(0), cell(1), cell(2), cell(3));
    if (t == "SSE")
        return writeSetupErrors(cell(0), cell(1), cell(2), cell(3));
    if (t == "MSE")
        return writeMeasurementErrors(cell(0), cell(1), cell(2), cell(3), cell(4), cell(5));
    if (t == "G0" || t == "G1" || t == "G2" || t == "G3")
        return writeGpsVector(t, cell(0));
    const std::string text(cell(0));
    if (t == "DS")
        return text + "\n";
    // A note; record texts typed as notes become those records again.
    if (text.starts_with("--OC,") || text.starts_with("--MO,") || text.starts_with("--JB,"))
        return text.substr(2) + "\n";
    if (text.starts_with("OC,") || text.starts_with("MO,") || text.starts_with("JB,"))
        return text + "\n";
    return writeNote(text);
}

std::string RawDocument::text() const {
    std::string out;
    out.reserve(m_rows.size() * 48);
    for (const auto &row : m_rows)
        out += lineFor(row);
    return out;
}

bool RawDocument::save(Interaction &ui) {
    if (m_path.empty()) {
        ui.message(tr("Error: failed to write rawfile"));
        return false;
    }
    return saveAs(m_path, ui);
}

bool RawDocument::saveAs(const std::filesystem::path &path, Interaction &ui) {
    std::string reason;
    if (!saveTextAtomically(path, text(), &reason)) {
        ui.message(std::string(tr("Error: failed to write rawfile")) + "\n" + reason);
        return false;
    }
    m_path = path;
    m_modified = false;
    return true;
}

// --- rows --------------------------------------------------------------------

bool RawDocument::setCell(size_t row, size_t column, const std::string &text) {
    if (row >= m_rows.size())
        return false;
    if (column == 0)
        return setRowType(row, text);
    RawRow &r = m_rows[row];
    const size_t width = captions(r.type).size();
    if (column > width)
        return false;
    if (r.cells.size() < width)
        r.cells.resize(width);
    r.cells[column - 1] = text;
    r.origin.reset();
    m_modified = true;
    return true;
}

bool RawDocument::setRowType(size_t row, const std::string &type) {
    if (row >= m_rows.size())
        return false;
    bool known = type.empty();
    for (const auto &t : kRowTypes)
        known = known || t == type;
    if (!known)
        return false;
    RawRow &r = m_rows[row];
    r.type = type;
    r.cells.resize(captions(type).size());
    r.origin.reset();
    if (type == "DO")
        r.cells[0] = "Data On/Off";
    m_modified = true;
    return true;
}

size_t RawDocument::addRow(const std::string &type, size_t afterRow) {
    // New rows go below the current row, where the surveyor is working.
    const size_t at = m_rows.empty() ? 0 : std::min(afterRow + 1, m_rows.size());
    RawRow row;
    row.type = type;
    row.cells.resize(captions(type).size());
    if (isObservationRow(type))
        row.cells[kCodeCell] = "AR";
    if (type == "DO")
        row.cells[0] = "Data On/Off";
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(at), std::move(row));
    m_modified = true;
    return at;
}

bool RawDocument::deleteRow(size_t row) {
    if (row >= m_rows.size())
        return false;
    m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(row));
    m_modified = true;
    return true;
}

// --- edit commands -------------------------------------------------------------

int RawDocument::modifyMeasurements(ModifyField field, double delta,
                                    const ModifySelection &selection) {
    const bool elevationDisplay = m_modes.verticalMode() == VerticalMode::ElevationDifference;
    if (field == ModifyField::VerticalAngle && elevationDisplay)
        field = ModifyField::ElevationDifference;
    if (field == ModifyField::ElevationDifference && !elevationDisplay)
        return -1;
    PointList points;
    const bool byPoint = !selection.points.empty();
    if (byPoint && !points.parse(selection.points))
        return 0;
    const AngleUnit unit = m_units.angle;
    const double circle = unit == AngleUnit::Gons ? 400.0 : 360.0;
    int count = 0;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        RawRow &row = m_rows[i];
        if (!isObservationRow(row.type) || row.cells.size() < 7)
            continue;
        if (byPoint ? !points.contains(row.cells[kForesightCell])
                    : (i + 1 < selection.firstLine || i + 1 > selection.lastLine))
            continue;
        const size_t column = field == ModifyField::Distance          ? kDistanceCell
                              : field == ModifyField::HorizontalAngle ? kHorizontalCell
                                                                      : kVerticalCell;
        const auto value = cellNumber(row.cells[column]);
        if (!value)
            continue;
        switch (field) {
        case ModifyField::Distance:
            row.cells[column] = fixed(*value + delta, 3);
            break;
        case ModifyField::ElevationDifference:
            row.cells[column] = fixed(*value + delta, 4);
            break;
        case ModifyField::HorizontalAngle:
        case ModifyField::VerticalAngle: {
            double a =
                unit == AngleUnit::Gons ? *value + delta : unpackDms(*value) + unpackDms(delta);
            if (!std::isfinite(a))
                continue; // nothing sensible to write; the cell keeps its text
            // fmod rather than adding circles: a huge angle would take forever.
            a = std::fmod(a, circle);
            if (a < 0.0)
                a += circle;
            if (a >= circle)
                a = 0.0;
            row.cells[column] = unit == AngleUnit::Gons ? fixed(a, 4) : formatDms(a, 4);
            break;
        }
        }
        row.origin.reset();
        ++count;
    }
    if (count > 0)
        m_modified = true;
    return count;
}

std::optional<CellPosition> RawDocument::find(const std::string &what, CellPosition from) const {
    if (what.empty() || m_rows.empty())
        return std::nullopt;
    // Row by row, left to right, from the cell after `from`, wrapping round
    // so that `from` itself is looked at last.
    const size_t rows = m_rows.size();
    const size_t startRow = std::min(from.row, rows - 1);
    for (size_t step = 0; step <= rows; ++step) {
        const size_t r = (startRow + step) % rows;
        const RawRow &row = m_rows[r];
        const size_t first = step == 0 ? from.column + 1 : 0;
        const size_t end =
            step == rows ? std::min(from.column + 1, row.cells.size() + 1) : row.cells.size() + 1;
        for (size_t c = first; c < end; ++c) {
            const std::string &text = c == 0 ? row.type : row.cells[c - 1];
            if (text.find(what) != std::string::npos)
                return CellPosition{r, c};
        }
    }
    return std::nullopt;
}

int RawDocument::replace(const std::string &what, const std::string &with, ReplaceScope scope,
                         Interaction &ui) {
    if (what.empty())
        return 0;
    int count = 0;
    for (size_t r = 0; r < m_rows.size(); ++r) {
        for (size_t c = 0; c < m_rows[r].cells.size(); ++c) {
            std::string &text = m_rows[r].cells[c];
            if (text.find(what) == std::string::npos)
                continue;
            if (scope == ReplaceScope::AskEach) {
                // The grid's first column is the row type, so cells count from 2.
                const ReplaceAnswer answer =
                    askReplace(ui, static_cast<long>(r + 1), static_cast<long>(c + 2));
                if (answer == ReplaceAnswer::Skip)
                    continue;
                if (answer == ReplaceAnswer::Stop)
                    return count;
            }
            long hits = 0;
            text = replaceAll(text, what, with, hits);
            m_rows[r].origin.reset();
            count += static_cast<int>(hits);
            m_modified = true;
        }
    }
    return count;
}

bool RawDocument::append(const std::filesystem::path &path, RawFlavour flavour, Interaction &ui) {
    RawFile file;
    if (const Status status = readRawFile(path, file); !status) {
        ui.message(statusText(status));
        return false;
    }
    // The other file's angles are in its own unit; the rows are filled in
    // that unit, as the cells of this document are in this document's.
    RawDocument other;
    other.m_modes = m_modes;
    other.m_units = file.units;
    auto rows = other.rowsFromFile(file, flavour);
    m_rows.insert(m_rows.end(), std::make_move_iterator(rows.begin()),
                  std::make_move_iterator(rows.end()));
    if (!rows.empty())
        m_modified = true;
    return true;
}

// The printed report: a heading, the file and its record count, then one
// line per row with its number, its type ("--" for a note) and the
// non-empty cells as caption=value, so a printout reads without the grid.
std::string RawDocument::printReport() const {
    std::string out = tr("Edit-Process Raw File");
    out += "\n";
    appendFormat(out, "%s: %s\n", tr("File"), fileName().c_str());
    appendFormat(out, "%s: %zu\n\n", tr("Records"), m_rows.size());
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const RawRow &row = m_rows[i];
        appendFormat(out, "%5zu  %-5s", i + 1, row.type.empty() ? "--" : row.type.c_str());
        const auto heads = captions(row.type);
        for (size_t c = 0; c < row.cells.size() && c < heads.size(); ++c) {
            if (row.cells[c].empty())
                continue;
            if (row.type.empty() || row.type == "DS")
                appendFormat(out, " %s", row.cells[c].c_str());
            else
                appendFormat(out, " %s=%s", heads[c].c_str(), row.cells[c].c_str());
        }
        out += '\n';
    }
    return out;
}

bool RawDocument::print(const std::filesystem::path &workingFolder, Interaction &ui) const {
    const auto target = workingFolder / "morvrprt.tmp";
    std::ofstream out(target, std::ios::binary | std::ios::trunc);
    if (!(out << printReport()) || !out.flush()) {
        ui.message(format(tr("Can't open output file %s"), target.string().c_str()));
        return false;
    }
    return true;
}

} // namespace tramline::raw
