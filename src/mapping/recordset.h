#pragma once
// Cursors over the records of a layer, their fields, and the small helper
// objects the logic makes itself (Strings, TableDesc).
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <vector>

#include "mapping/geodataset.h"

class Recordset;
using RecordsetPtr = std::shared_ptr<Recordset>;

// One field of the current record. Besides the table's fields every record has
// "Shape" (its geometry) and "FeatureID" (its record number, from 0).
class Field {
public:
    QString Name() const;
    // For "Shape" the record's shape type (23 polygon); else the field type code.
    int Type() const;
    QVariant Value() const;        // "Shape" gives no QVariant value: use shapeValue()
    ShapePtr shapeValue() const;   // a fresh shape object that outlives the cursor
    double toDouble() const;       // throws MapError for null or non-numeric values
    QString toText() const;        // the platform's plain text form of the value
    void setValue(const QVariant& v);       // while a new record is being added
    void setShape(const ShapePtr& shape);   // likewise, for "Shape"

private:
    friend class Fields;
    Field(Recordset* rs, int column) : rs_(rs), column_(column) {}
    Recordset* rs_;
    int column_;  // -2 Shape, -1 FeatureID, else table column
};

class Fields {
public:
    // Looked up without regard to case; a missing name throws MapError.
    Field Item(const QString& name) const;
    Field operator()(const QString& name) const { return Item(name); }
    // Walking: "Shape", "FeatureID", then the table's fields in table order.
    int Count() const;
    Field at(int i) const;

private:
    friend class Recordset;
    explicit Fields(Recordset* rs) : rs_(rs) {}
    Recordset* rs_;
};

struct Statistics {
    double Max = 0, Min = 0, Sum = 0, Mean = 0;
    int Count = 0;
};
using StatisticsPtr = std::shared_ptr<Statistics>;

class Recordset {
public:
    Recordset(GeoDatasetPtr ds, std::vector<int> ids);

    bool Eof() const { return pos_ >= ids_.size() && !adding_; }
    void MoveFirst() { pos_ = 0; }
    void MoveNext() { if (pos_ < ids_.size()) ++pos_; }
    int Count() const { return int(ids_.size()); }
    ::Fields Fields() { return ::Fields(this); }
    // Over all records of the set; "FeatureID" counts them. None for a field
    // without numbers; an unknown field throws MapError.
    StatisticsPtr CalculateStatistics(const QString& field) const;

    void AddNew();
    void Update();
    void StopEditing();

    const GeoDatasetPtr& dataset() const { return ds_; }
    const std::vector<int>& ids() const { return ids_; }
    int currentId() const;  // throws MapError at EOF

private:
    friend class Field;
    friend class Fields;
    GeoDatasetPtr ds_;
    std::vector<int> ids_;
    size_t pos_ = 0;
    bool adding_ = false;
    ShapePtr newShape_;
    std::vector<QVariant> newValues_;
};

// A list of texts that keeps each text once and hands them back in ascending order.
class Strings {
public:
    bool Add(const QString& s);  // false when already held
    int Count() const { return int(items_.size()); }
    QString Item(int i) const;
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    std::vector<QString> items_;
};

class TableDesc {
public:
    int FieldCount() const { return int(fields_.size()); }
    void setFieldCount(int n) { fields_.resize(size_t(n)); }
    QString FieldName(int i) const { return at(i).name; }
    int FieldType(int i) const { return at(i).type; }
    int FieldPrecision(int i) const { return at(i).width; }
    int FieldScale(int i) const { return at(i).precision; }
    void setFieldName(int i, const QString& v) { at(i).name = v; }
    void setFieldType(int i, int v) { at(i).type = v; }
    void setFieldPrecision(int i, int v) { at(i).width = v; }
    void setFieldScale(int i, int v) { at(i).precision = v; }
    const std::vector<FieldDef>& fields() const { return fields_; }

private:
    FieldDef& at(int i);
    const FieldDef& at(int i) const;
    std::vector<FieldDef> fields_;
};
using TableDescPtr = std::shared_ptr<TableDesc>;
