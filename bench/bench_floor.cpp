// Each overlay query beside its floor, in one run:
//   bench_floor DATASET_DIR [RUNS] [QUERY-NUMBER...]
// The query is the press of Update Map alone (the window's own code,
// offscreen, data loaded, the parameters of bench/bench_overlays.sh). The
// floor is the plain GEOS work that gives the same answer on the same data in
// memory: the same selection, an STR-tree per layer made at load like ours,
// prepared "contains properly" and "intersects" before each cut, and the same
// unions, differences, intersections and buffers. Both are checked to give
// the same number of shapes and the same area. Medians of RUNS (default 5) of
// wall and CPU (user + sys) time, and of the CPU-time ratio of each press to
// the floor run right after it; the machine may be shared, CPU time is the
// steadier figure.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <numeric>
#include <optional>
#include <set>

#include "app/frmMain.h"
#include "engine/query_run.h"
#include "mapping/maplayer.h"
#include "mapping/seam.h"
#include "workspace/loading.h"
#include "workspace/state.h"

namespace {

GEOSContextHandle_t h() { return geosContext(); }

class Yes : public seam::Handler {
public:
    seam::Answer message(const QString& text, seam::Buttons b, seam::Icon) override
    {
        if (b != seam::Buttons::YesNo) std::fprintf(stderr, "box: %s\n", qPrintable(text));
        return b == seam::Buttons::YesNo ? seam::Answer::Yes : seam::Answer::OK;
    }
    seam::FileAnswer file(const seam::FileRequest&) override { return {}; }
};

double cpuSeconds()
{
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return double(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec) + double(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e6;
}

struct Times {
    std::vector<double> wall, cpu;
    void add(const std::function<void()>& fn)
    {
        QElapsedTimer t;
        const double c0 = cpuSeconds();
        t.start();
        fn();
        wall.push_back(double(t.nsecsElapsed()) / 1e9);
        cpu.push_back(cpuSeconds() - c0);
    }
    static double median(std::vector<double> v)
    {
        std::sort(v.begin(), v.end());
        return v.empty() ? 0 : v[v.size() / 2];
    }
};

// The shapes of a result: their number and area.
struct Answer {
    size_t shapes = 0;
    double area = 0;
};

Answer answerOf(const std::vector<GeomPtr>& shapes)
{
    Answer a{shapes.size(), 0};
    for (const GeomPtr& g : shapes) {
        double x = 0;
        GEOSArea_r(h(), g.get(), &x);
        a.area += x;
    }
    return a;
}

bool polygonal(const GEOSGeometry* g)
{
    if (!g || GEOSisEmpty_r(h(), g)) return false;
    const int t = GEOSGeomTypeId_r(h(), g);
    if (t == GEOS_POLYGON || t == GEOS_MULTIPOLYGON) return true;
    double a = 0;  // a collection counts for its polygonal part
    return t == GEOS_GEOMETRYCOLLECTION && GEOSArea_r(h(), g, &a) && a > 0;
}

GeomPtr own(GEOSGeometry* g) { return g ? GeomPtr(g, GeomDeleter()) : nullptr; }

// A layer's geometries with an STR-tree, as loading leaves them.
struct Layer {
    GeoDatasetPtr ds;
    GEOSSTRtree* tree = nullptr;
    explicit Layer(GeoDatasetPtr d) : ds(std::move(d))
    {
        tree = GEOSSTRtree_create_r(h(), 10);
        for (int i = 0; i < ds->count(); ++i)
            if (ds->geom(i)) GEOSSTRtree_insert_r(h(), tree, ds->geom(i).get(), reinterpret_cast<void*>(size_t(i)));
    }
    ~Layer() { GEOSSTRtree_destroy_r(h(), tree); }
    // Records whose boxes meet g's and that are in the mask, in record order.
    std::vector<int> near(const GEOSGeometry* g, const std::vector<char>& mask) const
    {
        std::vector<int> out;
        GEOSSTRtree_query_r(h(), tree, g, [](void* item, void* d) {
            static_cast<std::vector<int>*>(d)->push_back(int(reinterpret_cast<size_t>(item)));
        }, &out);
        std::erase_if(out, [&](int i) { return !mask[size_t(i)]; });
        std::sort(out.begin(), out.end());
        return out;
    }
};

// The plain selections of the queries' expressions.
std::vector<char> windMask(const GeoDataset& ds)
{
    const int col = ds.fieldIndex("WINDPWRD");
    std::vector<char> m(size_t(ds.count()));
    for (int i = 0; i < ds.count(); ++i) {
        const double v = ds.value(i, col).toDouble();
        m[size_t(i)] = v >= 500 && v <= 800;
    }
    return m;
}

const QStringList kLandUses = {"SHRUBLAND", "GRASSLAND", "HUMID AREAS", "WETLAND", "FOREST", "MANGROVES"};

std::vector<char> landMask(const GeoDataset& ds)
{
    const int col = ds.fieldIndex("LAND_USE");
    std::vector<char> m(size_t(ds.count()));
    // The expression engine compares texts without regard to case.
    for (int i = 0; i < ds.count(); ++i) m[size_t(i)] = kLandUses.contains(ds.value(i, col).toString(), Qt::CaseInsensitive);
    return m;
}

std::vector<int> ids(const std::vector<char>& mask)
{
    std::vector<int> out;
    for (size_t i = 0; i < mask.size(); ++i)
        if (mask[i]) out.push_back(int(i));
    return out;
}

GeomPtr unionOf(const std::vector<GeomPtr>& parts)
{
    if (parts.size() == 1) return parts.front();
    std::vector<GEOSGeometry*> clones;
    for (const GeomPtr& g : parts) clones.push_back(GEOSGeom_clone_r(h(), g.get()));
    GeomPtr all = own(GEOSGeom_createCollection_r(h(), GEOS_GEOMETRYCOLLECTION, clones.data(), unsigned(clones.size())));
    return own(GEOSUnaryUnion_r(h(), all.get()));
}

// The records whose buffers the tiers of the line buffers unite: from 400
// records on, the record or batch at which a tier is full is left out.
std::vector<int> bufferedRecords(int count)
{
    using L = std::vector<int>;
    L all(static_cast<size_t>(count));
    std::iota(all.begin(), all.end(), 0);
    if (count < 400) return all;
    std::vector<L> batches;
    std::optional<L> current = L{0};
    int inBatch = 0;
    for (int k = 1; k < count; ++k) {
        bool started = false;
        if (!current) current = L{k}, started = true;
        if (inBatch >= 100) {
            batches.push_back(*current);
            current.reset();
            inBatch = 0;
        } else {
            if (!started) current->push_back(k);
            ++inBatch;
        }
    }
    std::optional<L> group;
    size_t start = 1;
    if (!current) group = batches[0], start = 2;
    else group = *current;
    std::vector<L> groups;
    int inGroup = 0;
    for (size_t i = start; i <= batches.size(); ++i) {
        bool started = false;
        if (!group) group = batches[i - 1], started = true;
        if (inGroup >= 10) {
            groups.push_back(*group);
            group.reset();
            inGroup = 0;
        } else {
            if (!started) group->insert(group->end(), batches[i - 1].begin(), batches[i - 1].end());
            ++inGroup;
        }
    }
    L total;
    start = 1;
    if (!group) total = groups[0], start = 2;
    else total = *group;
    for (size_t i = start; i <= groups.size(); ++i) total.insert(total.end(), groups[i - 1].begin(), groups[i - 1].end());
    return total;
}

// The buffers of a line layer, kept apart with their own STR-tree: the cut of
// a shape with their union is the union of its cuts with those that meet it.
struct BufferSet {
    std::vector<GeomPtr> parts;
    std::vector<PreparedPtr> prepared;
    GEOSSTRtree* tree = nullptr;
    BufferSet(const GeoDataset& lines, double d)
    {
        for (int k : bufferedRecords(lines.count())) parts.push_back(own(GEOSBuffer_r(h(), lines.geom(k).get(), d, 8)));
        tree = GEOSSTRtree_create_r(h(), 10);
        for (size_t i = 0; i < parts.size(); ++i) {
            prepared.emplace_back(GEOSPrepare_r(h(), parts[i].get()));
            GEOSSTRtree_insert_r(h(), tree, parts[i].get(), reinterpret_cast<void*>(i));
        }
    }
    ~BufferSet() { GEOSSTRtree_destroy_r(h(), tree); }
    GeomPtr intersect(const GeomPtr& g) const
    {
        std::vector<int> near;
        GEOSSTRtree_query_r(h(), tree, g.get(), [](void* item, void* d) {
            static_cast<std::vector<int>*>(d)->push_back(int(reinterpret_cast<size_t>(item)));
        }, &near);
        std::sort(near.begin(), near.end());
        std::vector<GeomPtr> pieces;
        for (int i : near) {
            if (GEOSPreparedContainsProperly_r(h(), prepared[size_t(i)].get(), g.get()) == 1) return g;
            if (GEOSPreparedIntersects_r(h(), prepared[size_t(i)].get(), g.get()) == 1)
                if (GeomPtr r = own(GEOSIntersection_r(h(), parts[size_t(i)].get(), g.get())); polygonal(r.get()))
                    pieces.push_back(r);
        }
        if (pieces.empty()) return nullptr;
        GeomPtr r = unionOf(pieces);
        return polygonal(r.get()) ? r : nullptr;
    }
};

struct Data {
    Layer wind, land, prot, roads, lines;
};

// The plain work of each query.
std::vector<GeomPtr> floorProtected(const Data& d)
{
    std::vector<GeomPtr> out;
    std::vector<GeomPtr> areas;
    for (int i = 0; i < d.prot.ds->count(); ++i) areas.push_back(d.prot.ds->geom(i));
    const GeomPtr dissolved = unionOf(areas);
    const PreparedPtr p(GEOSPrepare_r(h(), dissolved.get()));
    // Near a wind polygon the dissolved areas are the union of those whose
    // boxes meet it, a polygon of a few vertices instead of thousands.
    const std::vector<char> all(areas.size(), 1);
    for (int fid : ids(windMask(*d.wind.ds))) {
        const GeomPtr& g = d.wind.ds->geom(fid);
        if (GEOSPreparedContainsProperly_r(h(), p.get(), g.get()) == 1) continue;
        if (GEOSPreparedIntersects_r(h(), p.get(), g.get()) != 1) {
            out.push_back(g);
            continue;
        }
        std::vector<GeomPtr> near;
        for (int aid : d.prot.near(g.get(), all)) near.push_back(areas[size_t(aid)]);
        GeomPtr r = own(GEOSDifference_r(h(), g.get(), unionOf(near).get()));
        if (polygonal(r.get())) out.push_back(r);
    }
    return out;
}

std::vector<GeomPtr> floorLandUse(const Data& d)
{
    std::vector<GeomPtr> out;
    const std::vector<char> winds = windMask(*d.wind.ds);
    for (int lid : ids(landMask(*d.land.ds))) {
        const GeomPtr& land = d.land.ds->geom(lid);
        const PreparedPtr p(GEOSPrepare_r(h(), land.get()));
        for (int fid : d.wind.near(land.get(), winds)) {
            const GeomPtr& g = d.wind.ds->geom(fid);
            if (GEOSPreparedContainsProperly_r(h(), p.get(), g.get()) == 1) {
                out.push_back(g);
            } else if (GEOSPreparedIntersects_r(h(), p.get(), g.get()) == 1) {
                GeomPtr r = own(GEOSIntersection_r(h(), land.get(), g.get()));
                if (polygonal(r.get())) out.push_back(r);
            }
        }
    }
    return out;
}

std::vector<GeomPtr> floorBuffer(const Data& d, const Layer& lines)
{
    std::vector<GeomPtr> out;
    const BufferSet buffers(*lines.ds, 2000);
    for (int fid : ids(windMask(*d.wind.ds)))
        if (GeomPtr r = buffers.intersect(d.wind.ds->geom(fid))) out.push_back(r);
    return out;
}

std::vector<GeomPtr> floorAll(const Data& d)
{
    std::vector<GeomPtr> out;
    const BufferSet roads(*d.roads.ds, 2000), lines(*d.lines.ds, 2000);
    std::vector<GeomPtr> pieces;
    for (int lid : ids(landMask(*d.land.ds)))
        if (GeomPtr near = lines.intersect(d.land.ds->geom(lid)))
            if (GeomPtr piece = roads.intersect(near)) pieces.push_back(piece);
    const std::vector<char> winds = windMask(*d.wind.ds);
    const std::vector<char> areas(size_t(d.prot.ds->count()), 1);
    for (const GeomPtr& piece : pieces) {
        const PreparedPtr p(GEOSPrepare_r(h(), piece.get()));
        for (int fid : d.wind.near(piece.get(), winds)) {
            const GeomPtr& g = d.wind.ds->geom(fid);
            GeomPtr r;
            if (GEOSPreparedContainsProperly_r(h(), p.get(), g.get()) == 1) r = g;
            else if (GEOSPreparedIntersects_r(h(), p.get(), g.get()) == 1) r = own(GEOSIntersection_r(h(), piece.get(), g.get()));
            if (!polygonal(r.get())) continue;
            for (int aid : d.prot.near(r.get(), areas)) {
                const GeomPtr& a = d.prot.ds->geom(aid);
                if (!Envelope::of(a.get()).intersects(Envelope::of(r.get()))) continue;
                r = own(GEOSDifference_r(h(), r.get(), a.get()));
                if (!polygonal(r.get())) break;
            }
            if (polygonal(r.get())) out.push_back(r);
        }
    }
    return out;
}

void select(ComboBox* combo, const QString& text)
{
    for (int i = 0; i < combo->ListCount(); ++i)
        if (combo->List(i) == text) return combo->setListIndex(i);
    std::fprintf(stderr, "no entry %s\n", qPrintable(text));
    std::exit(2);
}

// The panel as bench/bench_overlays.sh fills it.
void setUp(FrmMain& f, const QString& query)
{
    select(f.cboSelectQuery, query);
    f.cboQueryDropDown->setText("500");
    f.cboQueryDropDown2->setText("800");
    if (query == "Best wind + roads" || query == "Best wind + transmission") f.txtQuery1[2]->setText("2");
    if (query == "Best wind (all)") {
        f.txtQuery1[1]->setText("2");
        f.txtQuery1[2]->setText("2");
        f.chkProtectedAreas->setChecked(true);
    }
    for (int i = 0; i < f.lstQuery1->ListCount(); ++i) f.lstQuery1->setSelected(i, kLandUses.contains(f.lstQuery1->List(i)));
}

}  // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_floor DATASET_DIR [RUNS] [QUERY-NUMBER...]\n");
        return 2;
    }
    const QString dir = QDir(argv[1]).absolutePath();
    const int runs = argc > 2 ? std::max(1, atoi(argv[2])) : 5;
    std::set<int> only;
    for (int i = 3; i < argc; ++i) only.insert(atoi(argv[i]));
    Yes yes;
    seam::setHandler(&yes);

    FrmMain& f = frmMain();
    f.show();
    LoadProject("20_wind.shp", dir + "/20_wind.shp", f.Map1, f.legend);
    auto layer = [](const char* file) { return LayerByFile(file)->GeoDataset(); };
    const Data data{Layer(layer("20_wind.shp")), Layer(layer("02_landuse.shp")), Layer(layer("31_protectedarea.shp")),
                    Layer(layer("43_roads.shp")), Layer(layer("44_transmissionline.shp"))};

    struct Case {
        const char* query;
        std::function<std::vector<GeomPtr>()> floor;
    };
    const Case cases[] = {
        {"Best wind - protected areas", [&] { return floorProtected(data); }},
        {"Best wind + land use", [&] { return floorLandUse(data); }},
        {"Best wind + roads", [&] { return floorBuffer(data, data.roads); }},
        {"Best wind + transmission", [&] { return floorBuffer(data, data.lines); }},
        {"Best wind (all)", [&] { return floorAll(data); }},
    };
    std::printf("%-28s %8s %8s %8s %8s %6s %6s %6s  %s\n", "query (median of runs)", "wall s", "cpu s", "floor", "f.cpu",
                "wall x", "cpu x", "pair x", "shapes / sq km, query and floor");
    int number = 0;
    for (const Case& c : cases) {
        if (!only.empty() && !only.count(++number)) continue;
        setUp(f, c.query);
        Times query, floor;
        Answer q, fl;
        // A press lets go of the previous result as it makes the new one; the
        // floor does the same with its own, so that each pays for that once.
        std::vector<GeomPtr> floorShapes;
        for (int r = 0; r < runs; ++r) {
            query.add([&] { f.cmdUpdateMap_Click(); });
            std::vector<GeomPtr> shapes;
            for (const ShapePtr& s : cShapes->items()) shapes.push_back(s->geom());
            q = answerOf(shapes);
            floor.add([&] { floorShapes = c.floor(); });
            fl = answerOf(floorShapes);
        }
        const double qw = Times::median(query.wall), qc = Times::median(query.cpu);
        const double fw = Times::median(floor.wall), fc = Times::median(floor.cpu);
        // Each press against the floor run right after it: what slows the
        // machine for a while slows both, and drops out of their ratio.
        std::vector<double> pairs;
        for (size_t i = 0; i < query.cpu.size(); ++i) pairs.push_back(query.cpu[i] / floor.cpu[i]);
        std::printf("%-28s %8.3f %8.3f %8.3f %8.3f %6.2f %6.2f %6.2f  %zu / %.1f, %zu / %.1f%s\n", c.query, qw, qc, fw,
                    fc, qw / fw, qc / fc, Times::median(pairs), q.shapes, q.area / 1e6, fl.shapes, fl.area / 1e6,
                    q.shapes == fl.shapes && std::abs(q.area - fl.area) < 1e-6 * q.area + 1 ? "" : "  DIFFERENT");
        std::fflush(stdout);
    }
    return 0;
}
