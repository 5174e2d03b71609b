// The JobXML export read back by libxml2: the skeleton, record IDs, the
// record each raw line gives cause for, rounds, units, both coordinate
// system forms and escaping; and, where xmllint is installed, the written
// files checked against the 5.3 schema with only the findings that the
// document's fixed form forces.
#include "base/angles.h"
#include "base/text.h"
#include "convert/export_flow.h"
#include "convert/import_flow.h"
#include "convert/jxl_export.h"
#include "convert_test_support.h"
#include "support/test_support.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdio>
#include <functional>
#include <map>
#include <set>

namespace tramline::test {
namespace {

const std::vector<std::string> kJob = {
    "JB,NMJOB <&> 'A',DT01-02-2026,TM10:00:00",
    "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0",
    "--Fence & \"gate\" <old>",
    "--Temperature = 20 Pressure = 760 MMHG PPM = 3",
    "SP,PN1,N 1000.0000,E 2000.0000,EL50.0000,--CP",
    "OC,OP1,N 1000.0000,E 2000.0000,EL50.0000,--",
    "BK,OP1,BP2,BS90.0000,BC0.0000",
    "LS,HI1.500,HR2.000",
    "SS,OP1,FP10,AR45.3000,ZE90.0000,SD12.3450,--TREE",
    "SS,OP1,FP11,AR50.0000,ZE91.0000,SD0.0000,--",
    "BD,OP1,FP2,AR0.0000,ZE90.0000,SD100.0000,--",
    "FD,OP1,FP3,AR90.0000,ZE90.0000,SD50.0000,--",
    "FR,OP1,FP3,AR270.0000,ZE270.0000,SD50.0000,--",
    "BR,OP1,FP2,AR180.0000,ZE270.0000,SD100.0000,--",
    "BD,OP1,FP2,AR0.0010,ZE90.0000,SD100.0000,--",
    "FD,OP1,FP3,AR90.0010,ZE90.0000,SD50.0000,--",
    "FR,OP1,FP3,AR270.0010,ZE270.0000,SD50.0000,--",
    "BR,OP1,FP2,AR180.0010,ZE270.0000,SD100.0000,--",
    "SS,OP1,FP12,AR10.0000,ZE90.0000,SD5.0000,--",
};

struct Document {
    xmlDocPtr doc = nullptr;
    explicit Document(const std::string &bytes)
        : doc(xmlReadMemory(bytes.data(), int(bytes.size()), "job.jxl", nullptr,
                            XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING)) {}
    ~Document() { xmlFreeDoc(doc); }
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;
    xmlNodePtr root() const { return xmlDocGetRootElement(doc); }
};

std::string name(xmlNodePtr node) {
    return reinterpret_cast<const char *>(node->name);
}

std::string attribute(xmlNodePtr node, const char *key) {
    xmlChar *value = xmlGetProp(node, reinterpret_cast<const xmlChar *>(key));
    std::string out = value ? reinterpret_cast<const char *>(value) : "";
    xmlFree(value);
    return out;
}

xmlNodePtr child(xmlNodePtr node, const std::string &wanted) {
    for (xmlNodePtr c = node ? node->children : nullptr; c; c = c->next)
        if (c->type == XML_ELEMENT_NODE && name(c) == wanted)
            return c;
    return nullptr;
}

std::string text(xmlNodePtr node) {
    if (!node)
        return "<missing>";
    xmlChar *content = xmlNodeGetContent(node);
    std::string out = reinterpret_cast<const char *>(content);
    xmlFree(content);
    return out;
}

std::vector<xmlNodePtr> records(const Document &d) {
    std::vector<xmlNodePtr> out;
    for (xmlNodePtr c = child(d.root(), "FieldBook")->children; c; c = c->next)
        if (c->type == XML_ELEMENT_NODE)
            out.push_back(c);
    return out;
}

std::string exported(const std::vector<std::string> &lines) {
    ScriptedInteraction ui;
    convert::ExportOutput out;
    EXPECT_TRUE(convert::exportJxlAt(lines, "2026-01-02T03:04:05", ui, out).ok());
    EXPECT_EQ(out.completion, "Conversion Complete");
    return out.bytes;
}

TEST(JxlExport, RecordsReadBackByAnXmlParser) {
    const Document d(exported(kJob));
    ASSERT_NE(d.doc, nullptr) << "not well-formed";
    EXPECT_EQ(name(d.root()), "JOBFile");
    EXPECT_EQ(attribute(d.root(), "jobName"), "JOB <&> 'A'");
    EXPECT_EQ(attribute(d.root(), "TimeStamp"), "2026-01-02T03:04:05");

    std::vector<std::string> kinds;
    const auto recs = records(d);
    for (std::size_t i = 0; i < recs.size(); ++i) {
        kinds.push_back(name(recs[i]));
        char id[24];
        std::snprintf(id, sizeof id, "%08zx", i + 1);
        EXPECT_EQ(attribute(recs[i], "ID"), id) << kinds.back();
    }
    const std::vector<std::string> expected = {
        "UnitsRecord",      "NoteRecord",       "AtmosphereRecord",  "PointRecord",
        "InstrumentRecord", "StationRecord",    "BackBearingRecord", "TargetRecord",
        "PointRecord",      "PointRecord",      "StartRoundsRecord", "StartRoundRecord",
        "PointRecord",      "PointRecord",      "PointRecord",       "PointRecord",
        "EndRoundRecord",   "StartRoundRecord", "PointRecord",       "PointRecord",
        "PointRecord",      "PointRecord",      "EndRoundRecord",    "EndRoundsRecord",
        "PointRecord"};
    EXPECT_EQ(kinds, expected);

    EXPECT_EQ(text(child(child(recs[1], "Notes"), "Note")), "Fence & \"gate\" <old>");
    EXPECT_NEAR(std::stod(text(child(recs[2], "Pressure"))), 1013.25, 0.01); // 760 mmHg
    EXPECT_EQ(text(child(recs[2], "PPM")), "3.00000000");
    EXPECT_EQ(text(child(child(recs[3], "Grid"), "North")), "1000.00000000");
    EXPECT_EQ(text(child(recs[3], "Method")), "CopiedPoint");
    EXPECT_EQ(text(child(recs[5], "TheodoliteHeight")), "1.50000000"); // LS after BK
    EXPECT_EQ(text(child(recs[6], "BackSight")), "2");
    EXPECT_EQ(text(child(recs[7], "TargetHeight")), "2.00000000");

    // Shots: ddd.mmss to decimal degrees, angle-only, faces, backsight.
    const xmlNodePtr shot = recs[8];
    EXPECT_EQ(text(child(shot, "Name")), "10");
    EXPECT_EQ(text(child(shot, "Code")), "TREE");
    EXPECT_EQ(text(child(shot, "Method")), "DirectReading");
    EXPECT_EQ(text(child(child(shot, "Circle"), "HorizontalCircle")), "45.5000000000");
    EXPECT_EQ(text(child(child(shot, "Circle"), "EDMDistance")), "12.34500000");
    EXPECT_EQ(text(child(shot, "StationID")), "00000006");
    EXPECT_EQ(text(child(shot, "BackBearingID")), "00000007");
    EXPECT_EQ(text(child(shot, "TargetID")), "00000008");
    EXPECT_EQ(text(child(recs[9], "Method")), "AngleOnly");
    EXPECT_EQ(text(child(recs[12], "Classification")), "BackSight");
    EXPECT_EQ(text(child(child(recs[12], "Circle"), "Face")), "Face1");
    EXPECT_EQ(text(child(child(recs[14], "Circle"), "Face")), "Face2");
    EXPECT_EQ(text(child(recs[14], "Classification")), "Normal");
    EXPECT_EQ(text(child(recs[11], "Round")), "1");
    EXPECT_EQ(text(child(recs[17], "Round")), "2");

    const xmlNodePtr environment = child(d.root(), "Environment");
    EXPECT_EQ(text(child(child(environment, "DisplaySettings"), "DistanceUnits")), "Metres");
    EXPECT_EQ(text(child(child(child(environment, "CoordinateSystem"), "Projection"), "Type")),
              "ScaleOnly");
    EXPECT_EQ(text(child(child(environment, "TimeZone"), "HoursToUTC")), "5");
}

TEST(JxlExport, UnitsAndGpsChooseDisplaySettingsAndTheUtmForm) {
    struct Case {
        std::vector<std::string> lines;
        const char *distanceUnits, *projection, *zone, *centralLongitude, *north;
    };
    const Case cases[] = {
        {{"MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0", "SP,PN1,N 3937.0000,E 0.0000,EL0.0000,--"},
         "USSurveyFeet",
         "ScaleOnly",
         "<missing>",
         "<missing>",
         "1200.00000000"},
        {{"MO,AD0,UN0,SF1.00000000,EC0,EO0,AU0", "SP,PN1,N 1000.0000,E 0.0000,EL0.0000,--"},
         "InternationalFeet",
         "ScaleOnly",
         "<missing>",
         "<missing>",
         "304.80000000"},
        // 81.3000 west (ddd.mmss) lies in zone 17, central meridian -81.
        {{"SP,PN1,N 10.0000,E 0.0000,EL0.0000,--",
          "GPS,PN9,LA28.300000000,LN-81.300000000,EL10.0000,--"},
         "Metres",
         "TransverseMercator",
         "17N",
         "-81.00000000",
         "10.00000000"},
    };
    for (const auto &c : cases) {
        const Document d(exported(c.lines));
        ASSERT_NE(d.doc, nullptr);
        const xmlNodePtr environment = child(d.root(), "Environment");
        const xmlNodePtr system = child(environment, "CoordinateSystem");
        EXPECT_EQ(text(child(child(environment, "DisplaySettings"), "DistanceUnits")),
                  c.distanceUnits);
        EXPECT_EQ(text(child(child(system, "Projection"), "Type")), c.projection);
        EXPECT_EQ(text(child(system, "ZoneName")), c.zone);
        EXPECT_EQ(text(child(child(system, "Projection"), "CentralLongitude")), c.centralLongitude);
        for (xmlNodePtr r : records(d))
            if (name(r) == "PointRecord" && child(r, "Grid")) {
                EXPECT_EQ(text(child(child(r, "Grid"), "North")), c.north);
            }
    }
}

TEST(JxlExport, CancelledExportWritesNothing) {
    ScriptedInteraction ui;
    ui.cancelAfterIdles = 1;
    convert::ExportOutput out;
    EXPECT_FALSE(convert::exportJxlAt(kJob, "2026-01-02T03:04:05", ui, out).ok());
    EXPECT_TRUE(out.bytes.empty());
    EXPECT_EQ(ui.messages.back(), "Conversion Error");
}

// Quality notes after a GPS record belong to its PointRecord; a G1 vector
// is a point with ECEF deltas from its base.
TEST(JxlExport, GpsQualityPrecisionAndVectors) {
    struct {
        const char *what;
        std::vector<std::string> lines;
        std::map<std::string, std::string> wanted; // "Parent/Element" -> text
        int notes;                                 // NoteRecords left
    } cases[] = {
        {"SDEV from a GSI read-back",
         {"GPS,PN9,LA28.300000000,LN-81.300000000,EL10.0000,--",
          "--SDEV: 0.030,0.040,0.020 PDOP: 1.8", "--another note"},
         {{"Precision/Horizontal", "0.05000000"},
          {"Precision/Vertical", "0.02000000"},
          {"QualityControl1/PDOP", "1.8"},
          {"QualityControl1/HDOP", ""},
          {"QualityControl1/HorizontalStandardDeviation", "0.050000"}},
         1},
        {"averaging notes",
         {"GPS,PN9,LA28.300000000,LN-81.300000000,EL10.0000,--", "--HRMS Avg: 0.012",
          "--VRMS Avg: 0.020", "--PDOP Avg: 2.1", "--Number of Satellites Avg: 9"},
         {{"Precision/Horizontal", "0.01200000"},
          {"QualityControl1/NumberOfSatellites", "9"},
          {"QualityControl1/PDOP", "2.1"}},
         0},
        {"no quality: neither element",
         {"GPS,PN9,LA28.300000000,LN-81.300000000,EL10.0000,--", "--PDOP Avg: none"},
         {{"Precision", "<missing>"}, {"QualityControl1", "<missing>"}},
         1},
        {"vector from a base",
         {"BP,PNB1,LA28.3,LN-81.3,EL10.0,--", "G1,BPB1,PN7,DX10.5,DY-2.25,DZ0.125"},
         {{"ECEFDeltas/DeltaX", "10.50000000"},
          {"ECEFDeltas/DeltaY", "-2.25000000"},
          {"RTK_Base", "B1"}},
         0},
    };
    for (const auto &c : cases) {
        const Document d(exported(c.lines));
        xmlNodePtr point = nullptr;
        int notes = 0;
        for (xmlNodePtr r : records(d)) {
            if (name(r) == "PointRecord")
                point = r;
            notes += name(r) == "NoteRecord";
        }
        ASSERT_NE(point, nullptr) << c.what;
        for (const auto &[path, value] : c.wanted) {
            xmlNodePtr node = point;
            for (std::string_view part : split(path, '/'))
                node = child(node, std::string(part));
            EXPECT_EQ(text(node), value) << c.what << ": " << path;
        }
        EXPECT_EQ(notes, c.notes) << c.what;
    }
}

// A job large enough to go to the file in pieces gives the same bytes as
// the export held in memory, and its messages are the export's own.
class JxlFiles : public ScratchFolderTest {};

TEST_F(JxlFiles, LargeJobWrittenInPiecesEqualsTheWholeDocument) {
    std::vector<std::string> lines(kJob.begin(), kJob.end());
    for (int i = 0; i < 4000; ++i)
        lines.push_back("SS,OP1,FP" + std::to_string(100 + i) +
                        ",AR45.3000,ZE90.0000,SD12.3450,--TREE & ROOT");
    ScriptedInteraction ui;
    convert::ExportOutput whole;
    ASSERT_TRUE(convert::exportJxlAt(lines, "2026-01-02T03:04:05", ui, whole).ok());
    ASSERT_GT(whole.bytes.size(), std::size_t(2) << 20) << "the job must span pieces";
    std::string streamed;
    convert::ExportOutput pieces;
    int calls = 0;
    pieces.sink = [&](std::string_view bytes) {
        ++calls;
        streamed += bytes;
        return true;
    };
    ASSERT_TRUE(convert::exportJxlAt(lines, "2026-01-02T03:04:05", ui, pieces).ok());
    EXPECT_GE(calls, 2);
    EXPECT_EQ(streamed + pieces.bytes, whole.bytes);
}

TEST_F(JxlFiles, MessagesOfFailures) {
    struct Case {
        const char *what;
        int failAtCall; // the sink refuses this call (1-based); 0: never
        const char *message;
    };
    const Case cases[] = {
        {"temporary file not made", 1,
         "\nError: cannot create temporary Trimble JXL file.\nConversion Error"},
        {"temporary file not written", 2,
         "\nError: cannot write temporary Trimble JXL file.\nConversion Error"},
    };
    std::vector<std::string> lines(kJob.begin(), kJob.end());
    for (int i = 0; i < 8000; ++i)
        lines.push_back("SS,OP1,FP" + std::to_string(100 + i) + ",AR45.3000,ZE90.0000,SD1.0,--");
    for (const auto &c : cases) {
        ScriptedInteraction ui;
        convert::ExportOutput out;
        int calls = 0;
        out.sink = [&](std::string_view) { return ++calls != c.failAtCall; };
        EXPECT_FALSE(convert::exportJxlAt(lines, "2026-01-02T03:04:05", ui, out).ok()) << c.what;
        ASSERT_FALSE(ui.messages.empty()) << c.what;
        EXPECT_EQ(ui.messages.back(), c.message) << c.what;
    }
    // An unreadable raw file, and a destination that cannot be made.
    ScriptedInteraction ui;
    convert::ExportOutput out;
    out.readError = "\nError: cannot open RW5 file.";
    EXPECT_FALSE(
        convert::runExport(convert::exportJxl, dir / "missing.rw5", dir / "x.jxl", {}, ui, out)
            .ok());
    EXPECT_EQ(ui.messages.back(), "\nError: cannot open RW5 file.");
    convert::ExportOutput intoFolder;
    EXPECT_FALSE(convert::runExport(convert::exportJxl, kJob, dir, {}, ui, intoFolder).ok());
    EXPECT_EQ(ui.messages.back(), "\nError: cannot create Trimble JXL file.\nConversion Error");
}

// Schema findings that the document's fixed form forces (each the start
// of xmllint's message): the root takes only jobName and TimeStamp and no
// Reductions element, the display settings carry VolumeUnits and
// StationIndexIncrement, the UTM form has an empty combined scale factor,
// GPS points are surveyed by "RTK", a missing GPS quality value is an
// empty element.
const std::vector<std::string> kForced = {
    "Element 'JOBFile': The attribute 'version' is required but missing.",
    "Element 'JOBFile': The attribute 'product' is required but missing.",
    "Element 'JOBFile': The attribute 'productVersion' is required but missing.",
    "Element 'JOBFile': Missing child element(s). Expected is ( Reductions ).",
    "Element 'VolumeUnits': This element is not expected.",
    "Element 'StationIndexIncrement': This element is not expected.",
    "Element 'CombinedScaleFactor': Missing child element(s). Expected is one of ( Location, "
    "Scale ).",
    "Element 'SurveyMethod': [facet 'enumeration'] The value 'RTK' is not an element",
    "Element 'PDOP': '' is not a valid value of the atomic type 'xs:double'.",
    "Element 'HDOP': '' is not a valid value of the atomic type 'xs:double'.",
    "Element 'VDOP': '' is not a valid value of the atomic type 'xs:double'.",
    "Element 'NumberOfSatellites': '' is not a valid value of the atomic type 'xs:integer'.",
};

bool forced(const std::string &finding) {
    for (const auto &known : kForced)
        if (finding.starts_with(known))
            return true;
    return false;
}

const char *const kSchema = TRAMLINE_SAMPLES_DIR "/jobxml/schema/JobXML.xsd";

class JxlSchema : public ScratchFolderTest {
protected:
    // xmllint's findings for `file`, without file and line; empty when valid.
    std::set<std::string> findings(const std::filesystem::path &file) {
        const auto log = dir / "xmllint.log";
        const std::string command = "xmllint --noout --schema '" + std::string(kSchema) + "' '" +
                                    file.string() + "' 2>'" + log.string() + "'";
        EXPECT_NE(std::system(command.c_str()), -1);
        std::set<std::string> out;
        std::istringstream in(slurp(log));
        for (std::string line; std::getline(in, line);) {
            const auto at = line.find("Element '");
            if (at != std::string::npos)
                out.insert(line.substr(at));
            else if (line.find("validate") == std::string::npos && !line.empty())
                ADD_FAILURE() << line;
        }
        return out;
    }
};

TEST_F(JxlSchema, ExampleAndSdrSampleAreWellFormedAndValidButForTheForcedFindings) {
    if (std::system("xmllint --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "xmllint not installed";
    TRAMLINE_REQUIRE_SAMPLES();
    ScriptedInteraction ui({"Sideshots"});
    convert::ImportSummary summary;
    ASSERT_TRUE(convert::runImport(convert::importSdr,
                                   {samplePath("sdr/20210205-3st.sdr"), dir / "sdr.rw5", {}}, ui,
                                   summary)
                    .ok());
    const std::filesystem::path sources[] = {
        std::filesystem::path(TRAMLINE_SOURCE_DIR) / "data/examples/closed-traverse.rw5",
        dir / "sdr.rw5", write("job.rw5", [] {
            std::string all;
            for (const auto &line : kJob)
                all += line + "\n";
            return all + "GPS,PN9,LA28.300000000,LN-81.300000000,EL10.0000,--\n" +
                   "--SDEV: 0.030,0.040,0.020 PDOP: 1.8\n" +
                   "BP,PNB1,LA28.3,LN-81.3,EL10.0,--\nG1,BPB1,PN7,DX10.5,DY-2.25,DZ0.125\n";
        }())};
    for (const auto &source : sources) {
        convert::ExportOutput out;
        const auto jxl = dir / (source.stem().string() + ".jxl");
        ASSERT_TRUE(convert::runExport(convert::exportJxl, source, jxl, {}, ui, out).ok());
        EXPECT_EQ(std::system(("xmllint --noout '" + jxl.string() + "'").c_str()), 0)
            << "not well-formed: " << source;
        for (const auto &finding : findings(jxl))
            EXPECT_TRUE(forced(finding)) << source << ": " << finding;
    }
}

} // namespace
} // namespace tramline::test
