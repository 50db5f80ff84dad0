#include "prepare/recipe.h"

#include <algorithm>
#include <filesystem>
#include <toml++/toml.h>

#include "prepare/layers.h"

namespace prepare {

namespace fs = std::filesystem;

namespace {

int lineOf(const toml::node& n)
{
    return int(n.source().begin.line);
}

std::string keyList(const std::vector<std::string>& keys)
{
    std::string s;
    for (const auto& k : keys) s += (s.empty() ? "" : ", ") + k;
    return s;
}

class Reader {
public:
    Reader(Recipe& recipe, const fs::path& folder) : recipe_(recipe), folder_(folder) {}

    [[noreturn]] void fail(int line, const std::string& what) const
    {
        throw InputError(recipe_.name + " line " + std::to_string(line) + ": " + what);
    }

    std::string text(const std::string& table, const std::string& key, const toml::node& n) const
    {
        if (!n.is_string()) fail(lineOf(n), (table.empty() ? "" : "[" + table + "] ") + key + " must be a text in quotes");
        return n.as_string()->get();
    }

    double number(const std::string& table, const std::string& key, const toml::node& n) const
    {
        const auto v = n.value<double>();
        if (!v || !(*v > 0)) fail(lineOf(n), "[" + table + "] " + key + " must be a number above 0");
        return *v;
    }

    std::string pathOf(const std::string& text) const
    {
        const fs::path p(text);
        return (p.is_absolute() ? p : folder_ / p).lexically_normal().string();
    }

    LayerRecipe layer(const std::string& stem, const toml::table& t, int line)
    {
        const StandardLayer& standard = *findLayer(stem);
        LayerRecipe r;
        r.stem = stem;
        r.line = line;
        const auto keys = keysOf(standard);
        bool haveSource = false;
        for (auto&& [k, v] : t) {
            const std::string key(k.str());
            const int at = lineOf(v);
            if (std::find(keys.begin(), keys.end(), key) == keys.end())
                fail(at, "unknown key \"" + key + "\" in [" + stem + "] (it takes " + keyList(keys) + ")");
            if (key == "source") {
                r.sourceText = text(stem, key, v);
                r.source = pathOf(r.sourceText);
                r.sourceLine = at;
                haveSource = true;
            } else if (key == "layer") {
                r.layer = text(stem, key, v);
            } else if (key == "where") {
                r.where = text(stem, key, v);
                r.whereLine = at;
            } else if (key == "keep") {
                const toml::array* a = v.as_array();
                if (!a) fail(at, "[" + stem + "] keep must be a list of field names, such as [\"name\"]");
                r.keepAll = false;
                r.keepLine = at;
                for (const toml::node& e : *a) r.keep.push_back(text(stem, key, e));
            } else if (key == "field") {
                r.field = text(stem, key, v);
                r.fieldLine = at;
            } else if (key == "classes") {
                r.classesText = text(stem, key, v);
                r.classes = pathOf(r.classesText);
                r.classesLine = at;
            } else if (key == "band") {
                const auto b = v.value<int64_t>();
                if (!v.is_integer() || !b || *b < 1) fail(at, "[" + stem + "] band must be a whole number from 1");
                r.band = int(*b);
                r.bandLine = at;
            } else if (key == "cell_km") {
                r.cellKm = number(stem, key, v);
            } else if (key == "margin_km") {
                const auto m = v.value<double>();
                if (!m || *m < 0) fail(at, "[" + stem + "] margin_km must be a number from 0");
                r.marginKm = *m;
            } else if (key == "unit") {
                const std::string u = text(stem, key, v);
                if (u != "kWh/m2/day" && u != "kWh/m2/year")
                    fail(at, "unknown unit \"" + u + "\" in [" + stem + "] (kWh/m2/day or kWh/m2/year)");
                r.perYear = u == "kWh/m2/year";
            }
        }
        if (!haveSource) fail(line, "[" + stem + "] has no source");
        if (r.cellKm == 0) r.cellKm = standard.cellKm;
        if (standard.kind == Kind::LandUse) {
            const bool raster = !r.classes.empty();
            if (raster == !r.field.empty())
                fail(line, "[02_landuse] takes either classes (with a class raster) or field (with a vector source)");
            if (raster && (!r.layer.empty() || !r.where.empty() || !r.keepAll))
                fail(line, "[02_landuse] with classes takes source, classes and band only");
            if (!raster && r.bandLine) fail(r.bandLine, "[02_landuse] with field takes no band");
        }
        return r;
    }

private:
    Recipe& recipe_;
    fs::path folder_;
};

}  // namespace

Recipe readRecipe(const std::string& path)
{
    Recipe recipe;
    recipe.path = path;
    recipe.name = fs::path(path).filename().string();
    std::error_code ec;
    if (!fs::is_regular_file(path, ec)) throw InputError("cannot read the recipe " + path);
    toml::table doc;
    try {
        doc = toml::parse_file(path);
    } catch (const toml::parse_error& e) {
        throw InputError(recipe.name + " line " + std::to_string(e.source().begin.line) + ": " +
                         std::string(e.description()));
    }
    Reader reader(recipe, fs::absolute(path).parent_path());
    std::vector<std::pair<const StandardLayer*, LayerRecipe>> found;
    for (auto&& [k, v] : doc) {
        const std::string key(k.str());
        const int line = lineOf(v);
        if (key == "crs") {
            recipe.crs = reader.text("", "crs", v);
            recipe.crsLine = line;
            continue;
        }
        const StandardLayer* standard = findLayer(key);
        if (!standard) {
            if (v.is_table()) reader.fail(line, "unknown table [" + key + "]: marlowan-prepare makes no file of that name");
            reader.fail(line, "unknown key \"" + key + "\" (only crs stands outside a table)");
        }
        if (!v.is_table()) reader.fail(line, key + " must be a table: [" + key + "]");
        found.emplace_back(standard, reader.layer(key, *v.as_table(), line));
    }
    if (std::none_of(found.begin(), found.end(), [](const auto& f) { return f.first->kind == Kind::Boundary; }))
        throw InputError(recipe.name + ": [39_countryboundary] is missing; every other layer is clipped to it");
    for (const StandardLayer& s : standardLayers())
        for (auto& f : found)
            if (f.first == &s) recipe.layers.push_back(std::move(f.second));
    return recipe;
}

std::string where(const Recipe& recipe, const LayerRecipe& layer, int line, const std::string& what)
{
    return recipe.name + " line " + std::to_string(line ? line : layer.line) + " ([" + layer.stem + "], source " +
           layer.sourceText + "): " + what;
}

}  // namespace prepare
