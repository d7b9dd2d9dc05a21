// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ThingsModel.h"

#include <numeric>

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace strandview {

namespace {

// The same in what is chosen, where the style would tint a plain colour. Its frame is seen about
// white and black.
QIcon swatch(const SbColor& colour)
{
    QPixmap picture(ThingsModel::swatchSize());
    picture.fill(Qt::gray);
    QPainter(&picture).fillRect(
        picture.rect().adjusted(1, 1, -1, -1),
        QColor::fromRgbF(double(colour[0]), double(colour[1]), double(colour[2])));
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected})
        icon.addPixmap(picture, mode);
    return icon;
}

} // namespace

void ThingsModel::setScene(DataScene* shown)
{
    beginResetModel();
    scene = shown;
    counts = countKinds();
    endResetModel();
}

void ThingsModel::follow()
{
    if (counts != countKinds())
        setScene(scene);
    else if (rowCount() > 0)
        emit dataChanged(index(0, NAME), index(rowCount() - 1, COLOUR));
}

int ThingsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0
                            : int(std::accumulate(counts.begin(), counts.end(), std::size_t(0)));
}

int ThingsModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : 2; }

QVariant ThingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return section == NAME ? "Name" : "Colour";
}

QVariant ThingsModel::data(const QModelIndex& index, int role) const
{
    const ShownDatum& datum = getDatum(index.row());
    if (index.column() == COLOUR) {
        return role == Qt::DecorationRole && datum.getColour ? swatch(datum.getColour(datum))
                                                             : QVariant();
    }
    const DataScene::Look look = lookOf(index.row());
    if (role == Qt::CheckStateRole)
        return look.isHidden ? Qt::Unchecked : Qt::Checked;
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return QString::fromStdString(look.name.value_or(datum.name));
    if (role == Qt::ToolTipRole)
        return QString::fromStdString(datum.name).toHtmlEscaped();
    return {};
}

Qt::ItemFlags ThingsModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags usual = QAbstractTableModel::flags(index);
    return index.column() == NAME ? usual | Qt::ItemIsUserCheckable | Qt::ItemIsEditable : usual;
}

bool ThingsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    DataScene::Look look = lookOf(index.row());
    if (role == Qt::CheckStateRole) {
        look.isHidden = value.toInt() == Qt::Unchecked;
    } else if (role == Qt::EditRole) {
        const std::string name = value.toString().toStdString();
        look.name.reset(); // without a name it has its own
        if (!name.empty() && name != getDatum(index.row()).name)
            look.name = name;
    } else {
        return false;
    }
    setLook(index.row(), look);
    return true;
}

const ShownDatum& ThingsModel::getDatum(int row) const
{
    const auto [kind, place] = placeOf(row);
    return scene->getShown(kind)[place];
}

void ThingsModel::setColour(int row, const SbColor& colour)
{
    DataScene::Look look = lookOf(row);
    look.colour = colour;
    setLook(row, look);
}

void ThingsModel::showAll(bool shown)
{
    for (int row = 0; row < rowCount(); ++row) {
        DataScene::Look look = lookOf(row);
        look.isHidden = !shown;
        const auto [kind, place] = placeOf(row);
        scene->setLook(kind, place, look);
    }
    follow();
    emit looksChanged();
}

QSize ThingsModel::swatchSize() { return {32, 14}; }

std::pair<std::size_t, std::size_t> ThingsModel::placeOf(int row) const
{
    auto place = std::size_t(row);
    std::size_t kind = 0;
    while (place >= counts[kind])
        place -= counts[kind++];
    return {kind, place};
}

DataScene::Look ThingsModel::lookOf(int row) const
{
    const auto [kind, place] = placeOf(row);
    return scene->getLook(kind, place);
}

void ThingsModel::setLook(int row, const DataScene::Look& look)
{
    const auto [kind, place] = placeOf(row);
    scene->setLook(kind, place, look);
    emit dataChanged(index(row, NAME), index(row, COLOUR));
    emit looksChanged();
}

std::vector<std::size_t> ThingsModel::countKinds() const
{
    std::vector<std::size_t> found;
    for (std::size_t kind = 0; scene && kind < scene->countKinds(); ++kind)
        found.push_back(scene->getShown(kind).size());
    return found;
}

} // namespace strandview
