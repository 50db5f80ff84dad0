#pragma once
// The platform's keyed collection: items under text keys found without regard
// to case, counted, in insertion order. A missing key is a failure.
#include <QHash>
#include <QString>
#include <vector>

#include "mapping/maperror.h"

template <typename T>
class Collection {
public:
    int Count() const { return int(items_.size()); }
    void Add(const T& item, const QString& key = QString()) {
        if (!key.isNull()) {
            const QString k = key.toLower();
            if (index_.contains(k)) throw MapError("key already in collection");
            index_.insert(k, items_.size());
        }
        items_.push_back(item);
        keys_.push_back(key);
    }
    const T& Item(const QString& key) const {
        auto it = index_.constFind(key.toLower());
        if (it == index_.constEnd()) throw MapError("no item under key " + key.toStdString());
        return items_[*it];
    }
    const T& operator()(const QString& key) const { return Item(key); }
    // Position from 1, as the platform numbers items added without keys.
    const T& Item(int position) const {
        if (position < 1 || position > Count()) throw MapError("collection index out of range");
        return items_[size_t(position - 1)];
    }
    bool contains(const QString& key) const { return index_.contains(key.toLower()); }
    const std::vector<T>& items() const { return items_; }
    const QString& keyAt(int i) const { return keys_[size_t(i)]; }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    std::vector<T> items_;
    std::vector<QString> keys_;
    QHash<QString, size_t> index_;
};
