// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_THINGSMODEL_H
#define STRANDVIEW_APP_WINDOW_THINGSMODEL_H

#include <cstddef>
#include <utility>
#include <vector>

#include <QAbstractTableModel>
#include <QSize>

#include "scene/DataScene.h"

namespace strandview {

/// What a scene shows, a row for each datum in the order in which they are drawn: its name with a
/// tick, which hides and shows it, and its colour.
class ThingsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { NAME, COLOUR };

    using QAbstractTableModel::QAbstractTableModel;

    /// Null for nothing. The scene outlives the model, or another one is given.
    void setScene(DataScene* shown);
    /// The scene shows another frame.
    void follow();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    const ShownDatum& getDatum(int row) const;
    void setColour(int row, const SbColor& colour);
    void showAll(bool shown);
    static QSize swatchSize(); ///< of a colour

signals:
    /// By the user.
    void looksChanged();

private:
    std::pair<std::size_t, std::size_t> placeOf(int row) const; ///< kind and index in it
    DataScene::Look lookOf(int row) const;
    void setLook(int row, const DataScene::Look& look);
    std::vector<std::size_t> countKinds() const;

    DataScene* scene = nullptr;
    std::vector<std::size_t> counts; ///< of each kind
};

} // namespace strandview

#endif
