#include "mapping/maplayer.h"

#include <algorithm>

void MapLayer::setGeoDataset(const GeoDatasetPtr& ds)
{
    ds_ = ds;
    if (ds_ && Name.isEmpty()) Name = ds_->baseName();
}

const ::GeoDataset& MapLayer::data() const
{
    if (!ds_) throw MapError("layer has no data");
    return *ds_;
}

RecordsetPtr MapLayer::Records() const
{
    return std::make_shared<Recordset>(ds_, data().recordIds());
}

int MapLayer::shapeType() const { return ds_ ? ds_->shapeType() : moNullShape; }

CoordinateSystemPtr MapLayer::CoordinateSystem() const { return ds_ ? ds_->coordinateSystem() : nullptr; }

RecordsetPtr MapLayer::SearchExpression(const QString& expression) const
{
    std::vector<int> ids = data().select(expression);
    if (ids.empty()) return nullptr;
    return std::make_shared<Recordset>(ds_, std::move(ids));
}

RecordsetPtr MapLayer::SearchByDistance(const ShapePtr& shape, double distance, const QString& expression) const
{
    if (!shape) throw MapError("search without a shape");
    const ::GeoDataset& d = data();
    Envelope env = shape->envelope();
    env.minX -= distance;
    env.minY -= distance;
    env.maxX += distance;
    env.maxY += distance;
    std::vector<int> ids = d.candidates(env);
    if (!ids.empty()) {
        auto h = geosContext();
        GeomPtr g = shape->geom();
        const GEOSPreparedGeometry* prep = GEOSPrepare_r(h, g.get());
        std::vector<int> hits;
        for (int id : ids) {
            const GeomPtr& fg = d.geom(id);
            if (!fg) continue;
            bool hit = distance <= 0 ? GEOSPreparedIntersects_r(h, prep, fg.get()) == 1
                                     : GEOSPreparedDistanceWithin_r(h, prep, fg.get(), distance) == 1;
            if (hit) hits.push_back(id);
        }
        GEOSPreparedGeom_destroy_r(h, prep);
        ids = std::move(hits);
    }
    if (!expression.trimmed().isEmpty() && !ids.empty()) {
        std::vector<int> sel = d.select(expression);
        std::vector<int> both;
        std::set_intersection(ids.begin(), ids.end(), sel.begin(), sel.end(), std::back_inserter(both));
        ids = std::move(both);
    }
    return std::make_shared<Recordset>(ds_, std::move(ids));
}

Envelope MapLayer::extent() const { return ds_ ? ds_->extent() : Envelope(); }

MapLayerPtr LayersCollection::Item(int index) const
{
    if (index < 0 || index >= Count()) throw MapError("layer index out of range");
    return layers_[size_t(index)];
}

MapLayerPtr LayersCollection::Item(const QString& name) const
{
    for (const auto& l : layers_)
        if (l->Name == name) return l;
    return nullptr;
}

void LayersCollection::Add(const MapLayerPtr& layer)
{
    if (!layer) throw MapError("no layer");
    layers_.insert(layers_.begin(), layer);
    if (changed) changed();
}

void LayersCollection::Remove(int index)
{
    if (index < 0 || index >= Count()) throw MapError("layer index out of range");
    layers_.erase(layers_.begin() + index);
    if (changed) changed();
}

void LayersCollection::Clear()
{
    layers_.clear();
    if (changed) changed();
}
