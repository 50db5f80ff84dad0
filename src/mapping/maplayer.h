#pragma once
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "mapping/geodataset.h"
#include "mapping/recordset.h"
#include "mapping/symbol.h"

class MapLayer;
using MapLayerPtr = std::shared_ptr<MapLayer>;

class MapLayer {
public:
    GeoDatasetPtr GeoDataset() const { return ds_; }
    // Binds the layer to its shapefile; a layer without a name takes the file's base name.
    void setGeoDataset(const GeoDatasetPtr& ds);

    QString Name;
    QString Tag;
    bool Visible = true;
    SymbolPtr Symbol = std::make_shared<::Symbol>();  // in force while Renderer is none
    RendererPtr Renderer;

    RecordsetPtr Records() const;  // all records, on the first
    int shapeType() const;
    CoordinateSystemPtr CoordinateSystem() const;
    // None when nothing matches; a malformed expression or unknown field throws MapError.
    RecordsetPtr SearchExpression(const QString& expression) const;
    // Records within distance of the shape; with 0, those that contain or touch it.
    RecordsetPtr SearchByDistance(const ShapePtr& shape, double distance, const QString& expression) const;
    Envelope extent() const;

private:
    const ::GeoDataset& data() const;  // throws MapError when unbound
    GeoDatasetPtr ds_;
};

// The layers of a map; index 0 is the top layer.
class LayersCollection {
public:
    int Count() const { return int(layers_.size()); }
    MapLayerPtr Item(int index) const;                 // throws MapError out of range
    MapLayerPtr Item(const QString& name) const;       // by Name; none when absent
    MapLayerPtr operator()(int index) const { return Item(index); }
    void Add(const MapLayerPtr& layer);                // on top, at index 0
    void Remove(int index);
    void Clear();
    auto begin() const { return layers_.begin(); }
    auto end() const { return layers_.end(); }

    std::function<void()> changed;  // the owning map listens

private:
    std::vector<MapLayerPtr> layers_;
};
