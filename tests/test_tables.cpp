// The literal tables of the system, written out again from what the user sees, never taken from the code.
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "app/frmMain.h"
#include "info/frmInfo.h"
#include "presentation/landuse_colours.h"
#include "presentation/layer_properties.h"
#include "presentation/renderers.h"
#include "support/testsupport.h"
#include "workspace/state.h"

using testsupport::recorder;

void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace {

struct StandardRow { const char *file, *name, *field; };
// Slot order; a null name: the layer keeps the component's; a field: what drives the symbols.
const StandardRow kStandard[28] = {
    {"01_elevation.shp", "Elevation (meters)", "Elev_m"}, {"02_landuse.shp", "Land Use", "LAND_USE"},
    {"11_solar_direct.shp", "40 km Solar Concentrators Annual Average(KWH/M2/DAY)", "ANNDIR"},
    {"12_solar_tilt.shp", "40 km Solar PV Annual Average(KWH/M2/DAY)", "ANNTILT"},
    {"13_solar_direct.shp", "10 KM Solar Concentrators Annual Average(KWH/M2/DAY)", "ANNDIR"},
    {"14_solar_glo.shp", "10 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "ANNGLO"},
    {"15_solar_glo.shp", "40 km Solar Global Horizontal Annual Average(KWH/M2/DAY)", "ANNGLO"},
    {"16_solar_tilt.shp", "10 km Solar PV Annual Average(KWH/M2/DAY)", "ANNTILT"},
    {"17_solar_direct.shp", "40 km Solar Concentrators Annual Average(KWH/M2/DAY)", "ANNDIR"},
    {"18_solar_tilt.shp", "40 km Solar PV Annual Average(KWH/M2/DAY)", "ANNTILT"},
    {"20_wind.shp", "Wind Power Density (W/m2)", "WINDPWRD"}, {"21_wind.shp", nullptr, nullptr},
    {"22_wind.shp", nullptr, nullptr}, {"30_lakes.shp", "Lakes", nullptr},
    {"31_protectedarea.shp", "Protected Areas", nullptr}, {"36_subcountrybnd3.shp", "Additional Boundary", nullptr},
    {"37_subcountrybnd2.shp", "Other Boundary", nullptr}, {"38_subcountrybnd1.shp", "State Boundaries", "NAME"},
    {"39_countryboundary.shp", "Country Boundary", nullptr}, {"40_rivers.shp", "Rivers", nullptr},
    {"42_railroad.shp", "Railways", nullptr}, {"43_roads.shp", "Roads", nullptr},
    {"44_transmissionline.shp", "Transmission Lines", nullptr}, {"50_protectedarea.shp", "Historic Sites", nullptr},
    {"51_powerplant.shp", "Power Plants", nullptr}, {"52_facilities.shp", "Facilities", nullptr},
    {"53_airports.shp", "Airports", nullptr}, {"59_cities.shp", "Cities", nullptr},
};

QString fieldOf(const MapLayerPtr& l)
{
    if (auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(l->Renderer)) return r->Field;
    if (auto r = std::dynamic_pointer_cast<ValueMapRenderer>(l->Renderer)) return r->Field;
    if (auto r = std::dynamic_pointer_cast<LabelRenderer>(l->Renderer)) return r->Field;
    return {};
}

}  // namespace

TEST(Tables, StandardFiles)
{
    frmMain();
    const MapLayer fresh;
    for (int slot = 0; slot < 28; ++slot) {
        const StandardRow& row = kStandard[slot];
        SCOPED_TRACE(row.file);
        EXPECT_EQ(sStandardFiles[size_t(slot)], row.file);
        auto layer = std::make_shared<MapLayer>();
        SetLayerProperties(layer, row.file, "");
        EXPECT_EQ(layer->Name, row.name ? QString(row.name) : fresh.Name);
        // The land-use renderer needs the file's values: its field is checked where a file is read.
        if (slot != 1) EXPECT_EQ(fieldOf(layer), row.field ? QString(row.field) : QString());
    }
}

namespace {

constexpr double kTop = std::numeric_limits<double>::quiet_NaN();
// A class as the renderer draws it and as a result shape is coloured.
struct Cls {
    double mapBreak;    // upper break of the renderer class; kTop for the last class
    int mapColour;
    double lowerBound;  // lowest value of the result class (round number)
    int resultColour = -1;  // -1: as on the map
};

const std::vector<Cls> kWind = {
    {200, RGB(255, 255, 255), -1e300, RGB(230, 230, 230)}, {300, RGB(222, 184, 135), 200}, {400, RGB(254, 172, 0), 300},
    {500, RGB(255, 110, 180), 400}, {600, RGB(154, 50, 205), 500}, {800, RGB(255, 0, 0), 600}, {kTop, RGB(0, 0, 255), 800},
};
const std::vector<Cls> kSolar = {
    {1.9999999999, RGB(122, 97, 50), -1e300}, {2.5, RGB(184, 146, 75), 2},   {2.9999999999, RGB(224, 178, 92), 2.5},
    {3.5, RGB(252, 218, 154), 3},             {3.9999999999, RGB(237, 237, 166), 3.5},
    {4.5, RGB(230, 230, 83), 4},              {4.9999999999, RGB(255, 255, 0), 4.5}, {5.5, RGB(252, 223, 0), 5},
    {5.9999999999, RGB(255, 171, 0), 5.5},    {6.5, RGB(237, 138, 0), 6},    {6.999999999, RGB(255, 94, 25), 6.5},
    {7.5, RGB(247, 0, 0), 7},                 {7.999999999, RGB(207, 0, 0), 7.5}, {8.5, RGB(153, 0, 0), 8},
    {8.999999999, RGB(115, 0, 0), 8.5},       {kTop, RGB(71, 0, 0), 9},
};
const std::vector<Cls> kElevation = {
    {200, RGB(38, 115, 0), -1e300},   {400, RGB(76, 156, 36), 200},     {600, RGB(129, 199, 93), 400},
    {800, RGB(196, 245, 171), 600},   {1000, RGB(255, 249, 186), 800}, {1200, RGB(255, 234, 140), 1000},
    {1400, RGB(255, 212, 102), 1200}, {1600, RGB(199, 172, 125), 1400}, {1800, RGB(168, 131, 67), 1600},
    {2000, RGB(138, 98, 23), 1800},   {2200, RGB(122, 47, 9), 2000},    {2500, RGB(166, 97, 63), 2200},
    {3000, RGB(209, 166, 144), 2500}, {kTop, RGB(255, 255, 255), 3000},
};

int resultColour(const QString& field, double v)
{
    auto s = std::make_shared<Symbol>();
    s->Color = RGB(1, 2, 3);
    SetClassSymbolColor(field, v, s);
    return s->Color;
}

}  // namespace

// Each break in both forms: on the map an exact break stays in the class below
// (200 is white on the map, tan as a result); for a result shape the round
// bound starts the class above (a whole solar number agrees, a half one parts).
TEST(Tables, ClassBreaksAndColoursInBothForms)
{
    recorder().clear();
    const std::pair<const char*, const std::vector<Cls>*> kinds[] = {
        {"WINDPWRD", &kWind}, {"Elev_m", &kElevation}, {"ANNDIR", &kSolar}, {"ANNTILT", &kSolar}, {"ANNGLO", &kSolar}};
    auto below = [](double v) { return std::nextafter(v, -1e300); };
    auto above = [](double v) { return std::nextafter(v, 1e300); };
    for (const auto& [field, table] : kinds) {
        SCOPED_TRACE(field);
        auto layer = std::make_shared<MapLayer>();
        QVariant unused;
        LayerRenderer(layer, field, unused);
        auto r = std::dynamic_pointer_cast<ClassBreaksRenderer>(layer->Renderer);
        ASSERT_TRUE(r);
        const auto& cls = *table;
        const int n = int(cls.size()) - 1;
        ASSERT_EQ(r->BreakCount(), n);
        auto map = [&](double v) { return r->Symbol(r->classOf(v))->Color; };
        auto result = [&](size_t i) { return cls[i].resultColour < 0 ? cls[i].mapColour : cls[i].resultColour; };
        for (int i = 0; i <= n; ++i) EXPECT_FALSE(r->Symbol(i)->Outline) << i;
        for (size_t i = 0; i < size_t(n); ++i) {
            const double b = cls[i].mapBreak;
            EXPECT_EQ(r->Break(int(i)), b) << i;  // exact double, hair margins included
            EXPECT_EQ(QList<int>({map(below(b)), map(b), map(above(b))}),
                      QList<int>({cls[i].mapColour, cls[i].mapColour, cls[i + 1].mapColour})) << i;
        }
        for (size_t i = 1; i <= size_t(n); ++i) {
            const double lo = cls[i].lowerBound;
            EXPECT_EQ(QList<int>({resultColour(field, below(lo)), resultColour(field, lo), resultColour(field, above(lo))}),
                      QList<int>({result(i - 1), result(i), result(i)})) << i;
        }
        EXPECT_EQ(QList<int>({map(-5), resultColour(field, -5)}), QList<int>({cls[0].mapColour, result(0)}));
    }
    EXPECT_TRUE(recorder().boxes.empty());
}

namespace {

struct LandUseGroup { int colour; std::vector<const char*> names; };
const LandUseGroup kLandUse[] = {
    {RGB(212, 231, 177), {"GARDEN", "CULTIVATIONS", "SALTY FOREST", "REFORESTATION", "PROTECTED FORESTS",
        "COASTAL FORESTS", "SMALL LEAF MIXED WOODS", "GRASSLAND WITH OR WITHOUT SCATTERED TREES AND SHRUBS"}},
    {RGB(220, 202, 143), {"OTHER LAND", "DRY AREAS", "COCO", "AGRICULTURAL DEVELOPMENT", "ROTATING CULTURES",
        "TEPUIS(TABLE MOUNTAINS)", "COOL FIELDS AND WOODS", "CROPLAND/GRASSLAND MOSAIC",
        "MODERATELY CLOSED TREE CANOPY WITH HERB AND BUSH"}},
    {RGB(240, 156, 54), {"PADDY", "INFRASTRUCTURE", "LAVA", "RANCH FOR DAIRY AND MEAT", "REGENERATION OF BIOMASS",
        "RESTINGAS", "GRASSLAND", "RIVERINE SAVANNA VEGETATION"}},
    {RGB(121, 108, 75), {"COCONUT", "MUSACEAS", "COFFEE, FRUITS, AND GRAINS", "INTENSIVE CULTURES, DRAINAGE",
        "GRASSES AND SHRUBS", "SHRUBLAND", "RIVERINE FOREST VEGETATION"}},
    {RGB(134, 200, 127), {"OPEN FOREST", "PASTURE/MARSH", "VEGETABLES", "FOREST (DECIDUOUS)", "FORESTRY",
        "INTERIOR FORESTS", "MIXED FOREST"}},
    {RGB(26, 129, 78), {"DENSE FOREST", "FOREST", "NATURAL FOREST", "FOREST (CONIFEROUS)", "FOREST FARMS (PINES)",
        "TROPICAL FORESTS", "DECIDUOUS BROADLEAF FOREST"}},
    {RGB(102, 140, 190), {"WATER BODIES", "WATER"}},
    {RGB(175, 175, 177), {"UNDEFINED", "MARSHLAND", "CLOSED CULTIVATED SAVANNA WOODLAND"}},
    {RGB(247, 178, 159), {"RUBBER", "HENEQUEN", "PROTECTED AREAS", "EXCLUSIONS", "BABACU OIL PALM", "SAVANNA (WOODS)",
        "UNCLASSIFIED/BUSHFIRE"}},
    {RGB(187, 174, 118), {"TEA", "HUMID AREAS", "NO APT", "AGRICULTURE", "ROTATING CULTURES, INTENSIVE METHOD",
        "CAATINGA", "DRY WOODY SCRUB", "DRYLAND CROPLAND AND PASTURE", "PLANTED COVER"}},
    {RGB(210, 205, 192), {"URBAN AREAS", "FREE RANCH", "PROTECTED FORESTS (PINES)", "MANGROVES", "BROADLEAF CROPS",
        "CROPLAND/WOODLAND MOSAIC", "GRASS AND HERB WITH OR WITHOUT SCATTERED TREES"}},
    {RGB(202, 145, 71), {"COFFEE", "AREAS WITH CRITICAL CLIMATE AND LAND", "INTENSIVE CULTURES", "CHACO",
        "SEMI DESERT SAGE", "BARREN OR SPARSELY VEGITATED", "WETLAND"}},
    {RGB(253, 229, 228), {"SUGAR CANE", "RIO NEGRO CAMPINARANA", "SHRUB THICKET WITH OR WITHOUT TREES"}},
    {RGB(231, 86, 78), {"TOURIST CENTER", "RANCH FOR MEAT", "EXCLUSIONS AND SELECTIONS", "SEASONAL FORESTS"}},
    {RGB(253, 233, 170), {"FRUITS", "EXTENSIVE AGRICULTURE", "SAVANNA", "CROPS, GRASS, SHRUBS",
        "IRRIGATED CROPLAND AND PASTURE", "MOSAIC OF THICKETS/GRASS WITH/WITHOUT SCATTERED TREES"}},
    {RGB(244, 238, 203), {"KENAF"}},
    {RGB(252, 246, 93), {"PASTURES", "TOURIST DEVELOPMENT", "PERMANENT CULTURAL VEGETATION", "OPEN PASTURE",
        "GRASS CROPS", "ROCK"}},
    {RGB(201, 230, 249), {"HUMID AREA", "SWAMP", "FLOODED FORESTS", "RAIN FOREST", "WOODED WETLAND", "LAGOON"}},
    {RGB(161, 186, 212), {"INDUSTRIAL"}}, {RGB(194, 158, 215), {"UNDEVELOPED", "MOIST FORESTS"}},
    {RGB(250, 192, 165), {"PERMANENT VEGETATION"}}, {RGB(227, 190, 175), {"PERMANENT VEGETATION (CULTURAL PASTURE)"}},
    {RGB(230, 212, 252), {"PERMANENT VEGETATION (PASTURE)"}},
    {RGB(204, 115, 59), {"PERMANENT VEGETATION (PASTURE, COFFEE, FRUITS)"}},
    {RGB(214, 173, 188), {"BARREN TUNDRA", "CLOSED SAVANNA WOODLAND"}},
    {RGB(211, 255, 222), {"CONIFER FOREST", "EVERGREEN BROADLEAF FOREST", "CLOSED FOREST"}},
    {RGB(205, 137, 102), {"CROPS AND TOWN", "MODERATELY DENSE HERB/BUSH WITH SCATTERED TREES"}},
    {RGB(156, 166, 94), {"DRY TROPICAL WOODS", "OPEN SAVANNA WOODLAND"}},
    {RGB(214, 219, 192), {"FOREST AND FIELD", "RESERVOIR"}}, {RGB(158, 187, 215), {"IRRIGATED CROPLAND", "RIVER"}},
    {RGB(237, 209, 255), {"MIRE, BOG, FEN", "SETTLEMENT"}},
    {RGB(255, 190, 190), {"SEASONAL TROPICAL FOREST", "UNCLASSIFIED/CLOUD"}},
    {RGB(199, 215, 158), {"SEMI DESERT SHRUBS", "WOODED TUNDRA", "WIDELY OPEN CULTIVATED SAVANNA WOODLAND"}},
    {RGB(215, 194, 158), {"TROPICAL DEGRADED FOREST", "MIXED TUNDRA", "OPEN CULTIVATED SAVANNA WOODLAND"}},
    {RGB(179, 168, 191), {"URBAN", "URBAN AND BUILT-UP LAND"}}, {RGB(144, 192, 217), {"LAKE"}},
    {RGB(255, 255, 255), {"OTHER"}},
};

}  // namespace

// Every name under its colour, and nothing more in the program's table; a
// look-alike or an unknown name takes the colour of "UNDEFINED".
TEST(Tables, LandUseColourGroups)
{
    int names = 0;
    for (const LandUseGroup& g : kLandUse)
        for (const char* name : g.names) {
            ++names;
            EXPECT_EQ(LandUseColour(name), g.colour) << name;
        }
    EXPECT_EQ(names, 141);
    int programNames = 0;
    for (const auto& g : LandUseColourGroups()) programNames += int(g.names.size());
    EXPECT_EQ(programNames, names);
    for (const char* odd : {"TEPUIS (TABLE MOUNTAINS)", "BARREN OR SPARSELY VEGETATED", "ICE", ""})
        EXPECT_EQ(LandUseColour(odd), RGB(175, 175, 177)) << odd;
}

namespace {

QStringList solarList(const QString& suffix)
{
    QStringList l{"Cell_ID", "Gridcode", "Lon", "Lat"};
    for (const char* m : {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec", "Ann"})
        l << m + suffix;
    return l;
}

struct InfoList { QStringList tags, fields; bool sorted; };
const InfoList kInfoLists[] = {
    {{"01_elevation.shp"}, {"Elev_m"}, false}, {{"02_landuse.shp"}, {"Land_use"}, false},
    {{"11_solar_direct.shp", "15_solar_direct.shp", "17_solar_direct.shp", "13_solar_direct.shp"}, solarList("dir"), true},
    {{"12_solar_tilt.shp", "16_solar_tilt.shp", "18_solar_tilt.shp"}, solarList("tilt"), true},
    {{"14_solar_glo.shp", "15_solar_glo.shp"}, solarList("glo"), true}, {{"20_wind.shp"}, {"WINDCLASS", "WINDPWRD"}, true},
    {{"30_lakes.shp"}, {"NAME"}, false}, {{"31_protectedarea.shp"}, {"NAME", "TYPE"}, true},
    {{"40_rivers.shp"}, {"NAME"}, false},
    {{"36_subcountrybnd3.shp", "37_subcountrybnd2.shp", "38_subcountrybnd1.shp"}, {"NAME", "POP"}, true},
    {{"42_railroad.shp", "43_roads.shp"}, {"NAME"}, false}, {{"44_transmissionline.shp"}, {"NAME", "VOLTAGE"}, true},
    {{"51_powerplant.shp"}, {"NAME", "CAPACITY"}, true}, {{"52_facilities.shp"}, {"NAME", "TYPE"}, true},
    {{"53_airports.shp"}, {"NAME"}, false}, {{"59_cities.shp"}, {"NAME", "TYPE", "POP"}, true},
    // No list: nothing shows and the format is left alone.
    {{"21_wind.shp", "22_wind.shp", "39_countryboundary.shp", "50_protectedarea.shp", "20_WIND.SHP"}, {}, false},
};

}  // namespace

// Each listed field shows and sets the format; a sorted layer writes its
// fields in list order, whatever order they were collected in.
TEST(Tables, IdentifyFieldLists)
{
    FrmInfo& f = frmInfo();
    for (const InfoList& row : kInfoLists)
        for (const QString& tag : row.tags) {
            SCOPED_TRACE(tag.toStdString());
            for (const QString& field : row.fields) {
                f.bSortedOutput = !row.sorted;
                EXPECT_TRUE(f.isShowValue(tag, field.toLower())) << field.toStdString();
                EXPECT_EQ(f.bSortedOutput, row.sorted) << field.toStdString();
            }
            f.bSortedOutput = true;
            EXPECT_FALSE(f.isShowValue(tag, "FEATUREID"));
            if (row.fields.isEmpty()) EXPECT_TRUE(f.bSortedOutput);
            f.dFieldValues.clear();
            QString lines;
            for (qsizetype i = row.fields.size() - 1; i >= 0; --i) {
                const QString name = row.fields[i].toUpper();
                f.dFieldValues.insert(name, "V" + QString::number(i));
                lines = name + " : V" + QString::number(i) + "\r\n" + lines;
            }
            EXPECT_EQ(f.sortBasedOnFieldNames(tag), row.sorted ? lines : QString());
        }
}

namespace {

// Every failure text with the folder of the source that shows it.
struct Failure { const char *place, *text; };
const Failure kFailures[] = {
    {"app", "Error in ErrorMessage() procedure"}, {"app", "Error Source:md_functions.DisplayError()"},
    {"app", " Error while loading the main form. Error Source:frmMain.Form_Load()"},
    {"app", " Error while resizing main form. Error Source:frmMain.Form_Resize()"},
    {"app", " Error while trying to control the enable/disbale status of controls. Error Source:frmMain.ControlEnable()"},
    {"app", " Error while unloading Main Form. Error Source:frmInfo.Form_Unload()"},
    {"app", " Error while trying to open Help. Error Source:frmMain.mnuHelp_Click()"},
    {"app", " Error while updating interface. Error Source:frmMain.UpdateInterface()"},
    {"app", " Error while trying to enable pan/zoom controls. Error Source:frmMain.EnablePanZoomControls()"},
    {"app", " Error while selecting edit map/legend option. Error Source:frmMain.optEditLegend_Click()"},
    {"app", " Error while selecting edit map/legend option. Error Source:frMain.EditOrLegend()"},
    {"app", " Error while loading splash screen. Error Source:frmSplash.Form_Load()"},
    {"app", " Error while Zoom In. Error Source:frmMain.cmdZoomIn_Click()"},
    {"app", " Error while Zoom Out. Error Source:frmMain.cmdZoomOut_Click()"},
    {"app", " Error while trying to display orginal map. Error Source:frmMain.cmdOriginalMap_Click()"},
    {"app", " Error while selecting Pan/Zoom option. Error Source:frmMain.optPanZoom_Click()"},
    {"app", " Error while setting the current scale. Error Source:frmMain.FillScaleComboBox()"},
    {"app", " Error while calculating the scale factor. Error Source:md_functions.CalculateScale()"},
    {"app", " Error while converting degree to mile. Error Source:md_functions.DegreesToMiles()"},
    {"app", " Error while lconverting degree to Radian. Error Source:md_functions.DegToRad()"},
    {"app", " Error in Map1_MouseDown() event. Error Source:frmMain.Map1_MouseDown()"},
    {"app", " Error in Map1_MouseMove() event. Error Source:frmMain.Map1_MouseMove()"},
    {"app", " Error in Map1_MouseUp event. Error Source:frmMain.Map1_MouseUp()"},
    {"app", " Error in BeforeMapLayerDraw function. Error Source:frmMain.Map1_BeforeLayerDraw()"},
    {"app", " Error in BeforeTrackingLayerDraw function. Error Source:frmMain.Map1_BeforeTrackingLayerDraw()"},
    {"app", " Error while trying to draw tracking layer. Error Source:frmMain.Map1_AfterTrackingLayerDraw()"},
    {"workspace", " Error while loading the project. Error Source:md_functions.LoadProject()"},
    {"workspace", "Error Source:md_functions.StandardFile()"},
    {"workspace", " Error while trying to add a new shape file. Error Source:frmMain.mnuAdd_Click()"},
    {"workspace", " Error while trying to load change layers form. Error Source:frmMain.cmdChangeLayers_Click()"},
    {"workspace", " Error while accepting new set of layer list. Error Source:frmShowLayersDialog.OKButton_Click()"},
    {"workspace", " Error while cancelling the layer list form. Error Source:frmShowLayersDialog.CancelButton_Click()"},
    {"workspace", " Error while activating layer list form. Error Source:frmShowLayersDialog.Form_Activate()"},
    {"workspace", " Error while deactivating layer list form. Error Source:frmShowLayersDialog.Form_Deactivate()"},
    {"workspace", " Error while filling Layer list label. Error Source:frmMain.Fill_lblLayersCurrentlyDisplayed()"},
    {"workspace", " Error while changing the layer visibility from legend panel. Error Source:frmMain.legend_AfterSetLayerVisible()"},
    {"workspace", "Erro while setting default visibility Error Source:md_functions.SetDefaultVisibility()"},
    {"workspace", "Error in isSetLayerVisible() function. Error while trying to count the number of features in a layer layer and set its visibility. "},
    {"presentation", " Error Source:md_functions.SetLayerProperties()"},
    {"presentation", " Error Source:md_functions.LayerRenderer()"},
    {"presentation", " Error Source:md_functions.FillcboSelectQuery()"},
    {"queryset", " Error while filling select query. Error Source:md_functions.FillcboSelectQuery()"},
    {"queryset", " Error while trying to select a query. Error Source:frmMain.cboSelectQuery_Click()"},
    {"queryset", " Error while trying to select Solar queries. Error Source:frmMain.cboQueryDropDown3_Click()"},
    {"queryset", "Error Source:md_functions.HandleQuerySelect()"},
    {"queryset", "Error in isQueryPossible() function. Error while trying to check whether the query can be performed. "},
    {"queryset", "Error in isLayerExist() function. Error while trying to check the existence of a layer. "},
    {"queryset", " Error Source:md_functions.SetQueryInputControls()"},
    {"queryset", " Error Source:md_functions.SetQueryListbox()"},
    {"queryset", " Error Source:md_functions.FillWindDensityDropDowns()"},
    {"queryset", " Error Source:md_functions.FillLandUseDropDown()"},
    {"queryset", " Error Source:md_functions.GetSolarResourceLayerID()"},
    {"queryset", "Error in getMaxWindDensity() function. Error while trying calculate the max wind energy. "},
    {"queryset", " Error while validating input parameters. Error Source:md_functions.CheckInputs()"},
    {"engine", " Error while trying to run the query and updata map. Error Source:frmMain.cmdUpdateMap_Click()"},
    {"engine", " Error Source:md_query_functions2.fill_cShapes_collection()"},
    {"engine", " Error Source:md_query_functions2.QueryResults()"},
    {"engine", " Error Source:md_query_functions2.draw_query_results()"},
    {"engine", " Error Source:md_query_functions2.CreateWindSelectExpression()"},
    {"engine", " Error Source:md_query_functions2.CreateSolarSelectExpression()"},
    {"engine", " Error Source:md_query_functions2.GetSolarLayerChosen()"},
    {"engine", " Error Source:md_query_functions2.wind_class_x_or_better()"},
    {"engine", " Error Source:md_query_functions2.wind_minus_protected_areas()"},
    {"engine", "Error generated in while performing the query"},
    {"engine", " Error Source:md_query_functions2.wind_with_land_use()"},
    {"engine", " Error Source:md_query_functions2.Wind_Landuse_Overlay()"},
    {"engine", " Error Source:md_query_functions2.create_line_buffers()"},
    {"engine", " Error Source:md_query_functions2.wind_with_roads()"},
    {"engine", " Error Source:md_query_functions2.wind_with_transmission()"},
    {"engine", " Error Source:md_query_functions2.wind_all()"},
    {"engine", " Error Source:md_query_functions2.Wind_All_Overlay()"},
    {"engine", " Error Source:md_query_functions2.solar_x_kwhm2_or_better() "},
    {"engine", " Error Source:md_query_functions2.best_solar_off_grid_systems()"},
    {"results", " Error while trying to show results query. Error Source:frmMain.cmdShowData_Click()"},
    {"results", " Error Source:md_query_functions2.UpdateQueryDataForm()"},
    {"results", " Error Source:md_query_functions2.CreateAreaDescription()"},
    {"results", " Error while dunloading results table. Error Source:frmShowQueryData.Form_Unload()"},
    {"results", " Error while trying to save data. Error Source:frmMain.mnuSave_Click()"},
    {"results", " Error while trying to save the output using saveAs(). Error Source:frmMain.mnuSaveAs_Click()"},
    {"results", " Error Source:md_query_functions2.SaveTrackingLayer()"},
    {"info", " Error while Trying to activate Info Form. Error Source:frmInfo.Form_Activate()"},
    {"info", " Error while Cancelling Info Form. Error Source:frmInfo.Form_Activate()"},
    {"info", " Error Source:frmInfo.isShowValue()"}, {"info", " Error Source:frmInfo.isFieldExistInArray()"},
    {"info", " Error Source:frmInfo. sortBasedOnFieldNames()"}, {"info", " Error Source:frmInfo.sortAndMakeOutputString()"},
    {"print", " Error in Form_Load function. Error Source:frmPrint.Form_Load()"},
    {"print", " Error in addLayersToOtherMaps function. Error Source:frmPrint.addLayersToOtherMaps()"},
    {"print", " Error in setUpScalebar function. Error Source:frmPrint.setupScalebar()"},
    {"print", " Error in Map2_BeforeLayerDraw function. Error Source:frmPrint.Map2_BeforeLayerDraw()"},
    {"print", " Error in cmdPrint_Click function. Error Source:frmPrint. cmdPrint_Click()"},
    {"print", " Error in ConvPrinterPix2FrameInch function. Error Source:frmPrint.ConvPrinterPix2FrameInch()"},
    {"print", " Error in ConvFrameInch2PrinterPix function. Error Source:frmPrint.ConvFrameInch2PrinterPix()"},
    {"print", " Error in ConvTwips2Pix function. Error Source:frmPrint.ConvTwips2Pix()"},
};

// The sources of one folder, with adjacent string literals joined as the compiler joins them.
QString sourcesOf(const QString& folder)
{
    QString all;
    const QDir dir(QStringLiteral(MARLOWAN_SOURCE_DIR "/src/") + folder);
    for (const QString& name : dir.entryList({"*.cpp", "*.h"}, QDir::Files)) {
        QFile file(dir.filePath(name));
        if (file.open(QIODevice::ReadOnly)) all += QString::fromUtf8(file.readAll()) + "\n";
    }
    static const QRegularExpression adjacent("\"\\s*\\n\\s*\"");
    return all.replace(adjacent, QString());
}

}  // namespace

// Most of these are provoked by the tests of their own part; here each stands
// once in the code as a whole literal, with its blanks, in its own folder, and
// every text the code reports is one of the list.
TEST(Tables, FailureTexts)
{
    QStringList listed;
    QString everything;
    for (const char* folder : {"app", "workspace", "presentation", "queryset", "engine", "results", "info", "print"})
        everything += sourcesOf(folder);
    for (const Failure& f : kFailures) {
        listed << f.text;
        EXPECT_TRUE(sourcesOf(f.place).contains('"' + QString(f.text) + '"')) << f.place << ": \"" << f.text << '"';
    }
    static const QRegularExpression reported("(?:ErrorMessage|MsgBox)\\(\\s*\"([^\"]*)\"");
    for (auto m = reported.globalMatch(everything); m.hasNext();) {
        const QString text = m.next().captured(1);
        if (text.contains("Error Source:") || text.startsWith("Error in ") || text.startsWith("Erro"))
            EXPECT_TRUE(listed.contains(text)) << "not listed: \"" << text.toStdString() << '"';
    }
}
