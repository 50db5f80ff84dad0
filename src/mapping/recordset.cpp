#include "mapping/recordset.h"

#include <algorithm>
#include <cmath>

#include "mapping/platform.h"

namespace {
constexpr int ShapeColumn = -2;
constexpr int IdColumn = -1;
}  // namespace

// --- Field ---------------------------------------------------------------------

QString Field::Name() const
{
    if (column_ == ShapeColumn) return "Shape";
    if (column_ == IdColumn) return "FeatureID";
    return rs_->ds_->fields()[size_t(column_)].name;
}

int Field::Type() const
{
    if (column_ == ShapeColumn) {
        if (rs_->adding_) return rs_->newShape_ ? rs_->newShape_->shapeType() : rs_->ds_->shapeType();
        return rs_->ds_->recordShapeType(rs_->currentId());
    }
    if (column_ == IdColumn) return moLong;
    return rs_->ds_->fields()[size_t(column_)].type;
}

QVariant Field::Value() const
{
    if (column_ == ShapeColumn) throw MapError("the Shape field has no plain value");
    if (rs_->adding_) {
        if (column_ == IdColumn) return QVariant(qlonglong(rs_->ds_->count()));
        return rs_->newValues_[size_t(column_)];
    }
    const int id = rs_->currentId();
    if (column_ == IdColumn) return QVariant(qlonglong(id));
    return rs_->ds_->value(id, column_);
}

ShapePtr Field::shapeValue() const
{
    if (column_ != ShapeColumn) throw MapError("not the Shape field");
    if (rs_->adding_) return rs_->newShape_;
    return rs_->ds_->shape(rs_->currentId());
}

double Field::toDouble() const
{
    const QVariant v = Value();
    if (!v.isValid() || v.isNull()) throw MapError("null value");
    if (v.typeId() == QMetaType::QString) return conv::ToDouble(v.toString());
    bool ok = false;
    double d = v.toDouble(&ok);
    if (!ok) throw MapError("not a number");
    return d;
}

QString Field::toText() const
{
    const QVariant v = Value();
    if (!v.isValid() || v.isNull()) return QString("");
    switch (v.typeId()) {
    case QMetaType::Double: return conv::NumText(v.toDouble());
    case QMetaType::LongLong: return QString::number(v.toLongLong());
    default: return v.toString();
    }
}

void Field::setValue(const QVariant& v)
{
    if (!rs_->adding_) throw MapError("the record is not being added");
    if (column_ == ShapeColumn) throw MapError("use setShape for the Shape field");
    if (column_ == IdColumn) throw MapError("FeatureID cannot be set");
    rs_->newValues_[size_t(column_)] = v;
}

void Field::setShape(const ShapePtr& shape)
{
    if (!rs_->adding_) throw MapError("the record is not being added");
    if (column_ != ShapeColumn) throw MapError("not the Shape field");
    rs_->newShape_ = shape;
}

// --- Fields --------------------------------------------------------------------

Field Fields::Item(const QString& name) const
{
    if (name.compare("Shape", Qt::CaseInsensitive) == 0) return Field(rs_, ShapeColumn);
    const int i = rs_->ds_->fieldIndex(name);
    if (i >= 0) return Field(rs_, i);
    if (name.compare("FeatureID", Qt::CaseInsensitive) == 0) return Field(rs_, IdColumn);
    throw MapError("no field " + name.toStdString());
}

int Fields::Count() const { return 2 + int(rs_->ds_->fields().size()); }

Field Fields::at(int i) const
{
    if (i < 0 || i >= Count()) throw MapError("field index out of range");
    if (i == 0) return Field(rs_, ShapeColumn);
    if (i == 1) return Field(rs_, IdColumn);
    return Field(rs_, i - 2);
}

// --- Recordset -----------------------------------------------------------------

Recordset::Recordset(GeoDatasetPtr ds, std::vector<int> ids) : ds_(std::move(ds)), ids_(std::move(ids))
{
    if (!ds_) throw MapError("recordset without data");
}

int Recordset::currentId() const
{
    if (pos_ >= ids_.size()) throw MapError("no current record");
    return ids_[pos_];
}

StatisticsPtr Recordset::CalculateStatistics(const QString& field) const
{
    auto st = std::make_shared<Statistics>();
    int column = ds_->fieldIndex(field);
    if (column < 0) {
        if (field.compare("FeatureID", Qt::CaseInsensitive) != 0) throw MapError("no field " + field.toStdString());
        st->Count = int(ids_.size());
        if (!ids_.empty()) {
            st->Min = *std::min_element(ids_.begin(), ids_.end());
            st->Max = *std::max_element(ids_.begin(), ids_.end());
            for (int id : ids_) st->Sum += id;
            st->Mean = st->Sum / double(ids_.size());
        }
        return st;
    }
    const int type = ds_->fields()[size_t(column)].type;
    if (type != moDouble && type != moLong) return nullptr;
    st->Count = int(ids_.size());
    bool first = true;
    int n = 0;
    for (int id : ids_) {
        const QVariant& v = ds_->value(id, column);
        if (!v.isValid() || v.isNull()) continue;
        double x = v.toDouble();
        if (first) { st->Min = st->Max = x; first = false; }
        st->Min = std::min(st->Min, x);
        st->Max = std::max(st->Max, x);
        st->Sum += x;
        ++n;
    }
    if (n == 0) return nullptr;
    st->Mean = st->Sum / n;
    return st;
}

void Recordset::AddNew()
{
    if (!ds_->isWritable()) throw MapError("the data cannot be edited");
    adding_ = true;
    newShape_.reset();
    newValues_.assign(ds_->fields().size(), QVariant());
}

void Recordset::Update()
{
    if (!adding_) throw MapError("no record is being added");
    ds_->append(newShape_, newValues_);
    adding_ = false;
    newShape_.reset();
    ids_.push_back(ds_->count() - 1);
    pos_ = ids_.size();
}

void Recordset::StopEditing()
{
    adding_ = false;
    ds_->stopEditing();
}

// --- Strings -------------------------------------------------------------------

bool Strings::Add(const QString& s)
{
    auto it = std::lower_bound(items_.begin(), items_.end(), s);
    if (it != items_.end() && *it == s) return false;
    items_.insert(it, s);
    return true;
}

QString Strings::Item(int i) const
{
    if (i < 0 || i >= Count()) throw MapError("index out of range");
    return items_[size_t(i)];
}

// --- TableDesc -----------------------------------------------------------------

FieldDef& TableDesc::at(int i)
{
    if (i < 0 || i >= FieldCount()) throw MapError("field index out of range");
    return fields_[size_t(i)];
}

const FieldDef& TableDesc::at(int i) const
{
    if (i < 0 || i >= FieldCount()) throw MapError("field index out of range");
    return fields_[size_t(i)];
}
