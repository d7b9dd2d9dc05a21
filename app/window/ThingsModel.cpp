// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ThingsModel.h"

#include <algorithm>
#include <cassert>
#include <cctype>
#include <utility>

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace strandview {

/// The root, a file, a thing or a part of one.
struct ThingsModel::Row
{
    Row* parent = nullptr; ///< null of the root
    std::size_t place = 0; ///< among the parent's
    std::string file;      ///< the name of a file
    Thing thing;           ///< if it is one, or the part
    std::vector<std::unique_ptr<Row>> children;

    bool isFile() const { return parent && !parent->parent; }
    bool isThing() const { return parent && parent->parent; } ///< or a part
};

namespace {

// Where a file's name ends in that of a datum: "helix.txt" of "helix.txt:1: rod 1", "rods.json" of
// "rods.json: rods[0]".
std::size_t lengthOfFile(const std::string& name)
{
    const std::size_t colon = name.find(": ");
    if (colon == std::string::npos)
        return 0;
    std::size_t end = colon;
    while (end > 0 && std::isdigit(static_cast<unsigned char>(name[end - 1])))
        --end;
    return end > 0 && end < colon && name[end - 1] == ':' ? end - 1 : colon;
}

std::string fileOf(const std::string& name) { return name.substr(0, lengthOfFile(name)); }

// "rod 1", "rods[0]".
std::string withoutFile(const std::string& name)
{
    const std::size_t colon = name.find(": ");
    return colon == std::string::npos ? name : name.substr(colon + 2);
}

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

// "DNA 1", "strand 2".
std::string ownName(const ShownDatum& datum, const Thing& thing)
{
    return thing.part == ThingPart::WHOLE ? withoutFile(datum.name) : nameOf(thing.part);
}

} // namespace

ThingsModel::ThingsModel(QObject* parent) : QAbstractItemModel(parent), root(new Row) {}

ThingsModel::~ThingsModel() = default;

void ThingsModel::setScene(DataScene* shown, bool isOfSameFiles)
{
    scene = shown;
    if (!isOfSameFiles) {
        beginResetModel();
        root->children.clear();
        endResetModel();
    }
    follow();
}

// A tree that hears of a file's things draws all rows again: to tell it of the parts of thousands
// would take it far longer.
void ThingsModel::follow()
{
    syncFiles(filesShown());
    for (const auto& file : root->children) {
        const QModelIndex ofFile = indexOf(*file);
        emit dataChanged(ofFile, ofFile);
        emit dataChanged(index(0, NAME, ofFile), index(rowCount(ofFile) - 1, COLOUR, ofFile));
    }
}

// Rows

const ThingsModel::Row& ThingsModel::rowAt(const QModelIndex& index)
{
    return *static_cast<const Row*>(index.internalPointer());
}

QModelIndex ThingsModel::indexOf(const Row& row, int column) const
{
    return row.parent ? createIndex(int(row.place), column, const_cast<Row*>(&row)) : QModelIndex();
}

QModelIndex ThingsModel::index(int row, int column, const QModelIndex& parent) const
{
    const Row& of = parent.isValid() ? rowAt(parent) : *root;
    const bool isThere = row >= 0 && std::size_t(row) < of.children.size();
    return isThere ? indexOf(*of.children[std::size_t(row)], column) : QModelIndex();
}

QModelIndex ThingsModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? indexOf(*rowAt(index).parent) : QModelIndex();
}

int ThingsModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > NAME)
        return 0;
    return int((parent.isValid() ? rowAt(parent) : *root).children.size());
}

int ThingsModel::columnCount(const QModelIndex& /*parent*/) const { return 2; }

std::vector<ThingsModel::File> ThingsModel::filesShown() const
{
    std::vector<File> files;
    if (!scene)
        return files;
    std::size_t last = 0; // neighbours are mostly of one file
    for (const Thing& thing : scene->getThings()) {
        if (scene->getLook(thing).isDeleted)
            continue;
        const std::string name = fileOf(scene->getShown(thing.kind)[thing.index].name);
        if (last >= files.size() || files[last].name != name)
            last =
                std::size_t(std::find_if(files.begin(), files.end(),
                                         [&name](const File& file) { return file.name == name; }) -
                            files.begin());
        if (last == files.size())
            files.push_back({name, {}});
        files[last].things.push_back(thing);
    }
    return files;
}

// As many as before are the same ones, which have other names in each frame of a series of files.
// Else those of the same names are.
void ThingsModel::syncFiles(const std::vector<File>& files)
{
    if (files.size() != root->children.size()) {
        for (std::size_t i = root->children.size(); i-- > 0;) {
            const std::string& name = root->children[i]->file;
            if (std::none_of(files.begin(), files.end(),
                             [&name](const File& file) { return file.name == name; }))
                remove(*root, i, 1);
        }
        for (std::size_t i = 0; i < files.size(); ++i) {
            const auto& known = root->children;
            if (i < known.size() && known[i]->file == files[i].name)
                continue;
            std::vector<std::unique_ptr<Row>> rows;
            rows.push_back(std::make_unique<Row>());
            rows.back()->file = files[i].name;
            insert(*root, i, std::move(rows));
        }
        if (root->children.size() > files.size())
            remove(*root, files.size(), root->children.size() - files.size());
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        root->children[i]->file = files[i].name;
        syncThings(*root->children[i], files[i].things);
    }
}

// Both are in order.
void ThingsModel::syncThings(Row& file, const std::vector<Thing>& things)
{
    const auto& rows = file.children;
    const auto isGone = [&](std::size_t row) {
        return !std::binary_search(things.begin(), things.end(), rows[row]->thing);
    };
    for (std::size_t end = rows.size(); end > 0; --end) {
        std::size_t first = end;
        while (first > 0 && isGone(first - 1))
            --first;
        if (first < end)
            remove(file, first, end - first);
        end = std::max<std::size_t>(first, 1);
    }
    for (std::size_t i = 0; i < things.size();) {
        if (i < rows.size() && rows[i]->thing == things[i]) {
            syncParts(*rows[i]);
            ++i;
            continue;
        }
        std::vector<std::unique_ptr<Row>> missing;
        const std::size_t at = i;
        for (; i < things.size() && (at == rows.size() || things[i] < rows[at]->thing); ++i) {
            missing.push_back(makeRow(things[i]));
        }
        insert(file, at, std::move(missing));
    }
}

std::vector<Thing> ThingsModel::partsShown(const Thing& thing) const
{
    std::vector<Thing> parts =
        thing.part == ThingPart::WHOLE ? scene->getParts(thing) : std::vector<Thing>();
    parts.erase(
        std::remove_if(parts.begin(), parts.end(),
                       [this](const Thing& part) { return scene->getLook(part).isDeleted; }),
        parts.end());
    return parts;
}

// With those of its parts.
std::unique_ptr<ThingsModel::Row> ThingsModel::makeRow(const Thing& thing) const
{
    auto row = std::make_unique<Row>();
    row->thing = thing;
    for (const Thing& part : partsShown(thing)) {
        row->children.push_back(makeRow(part));
        row->children.back()->parent = row.get();
        row->children.back()->place = row->children.size() - 1;
    }
    return row;
}

void ThingsModel::syncParts(Row& thing)
{
    if (!thing.children.empty() || !scene->getParts(thing.thing).empty())
        syncThings(thing, partsShown(thing.thing));
}

void ThingsModel::insert(Row& parent, std::size_t at, std::vector<std::unique_ptr<Row>> rows)
{
    beginInsertRows(indexOf(parent), int(at), int(at + rows.size()) - 1);
    for (auto& row : rows)
        row->parent = &parent;
    parent.children.insert(parent.children.begin() + std::ptrdiff_t(at),
                           std::make_move_iterator(rows.begin()),
                           std::make_move_iterator(rows.end()));
    for (std::size_t i = at; i < parent.children.size(); ++i)
        parent.children[i]->place = i;
    endInsertRows();
}

void ThingsModel::remove(Row& parent, std::size_t first, std::size_t count)
{
    beginRemoveRows(indexOf(parent), int(first), int(first + count) - 1);
    const auto begin = parent.children.begin() + std::ptrdiff_t(first);
    parent.children.erase(begin, begin + std::ptrdiff_t(count));
    for (std::size_t i = first; i < parent.children.size(); ++i)
        parent.children[i]->place = i;
    endRemoveRows();
}

// What is told of them

QVariant ThingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return section == NAME ? "Name" : "Colour";
}

QVariant ThingsModel::data(const QModelIndex& index, int role) const
{
    const Row& row = rowAt(index);
    if (role == Qt::CheckStateRole && index.column() == NAME)
        return tickOf(row);
    if (row.isFile()) {
        const bool isName = role == Qt::DisplayRole || role == Qt::ToolTipRole;
        return isName && index.column() == NAME ? QString::fromStdString(row.file) : QVariant();
    }
    const ShownDatum* const datum = find(row.thing);
    if (!datum)
        return {};
    if (index.column() == COLOUR) {
        const std::optional<SbColor> colour = colourOf(row.thing);
        return role == Qt::DecorationRole && colour ? swatch(*colour) : QVariant();
    }
    const std::string part = nameOf(row.thing.part);
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return QString::fromStdString(
            scene->getLook(row.thing).name.value_or(ownName(*datum, row.thing)));
    if (role == Qt::ToolTipRole)
        return QString::fromStdString(datum->name + (part.empty() ? "" : ", " + part))
            .toHtmlEscaped();
    return {};
}

Qt::CheckState ThingsModel::tickOf(const Row& row) const
{
    Things things = thingsIn(row);
    for (const auto& child : row.children) {
        for (const auto& part : child->children)
            things.insert(part->thing);
        things.insert(child->thing);
    }
    const auto hidden = std::count_if(things.begin(), things.end(), [this](const Thing& thing) {
        return scene->getLook(thing).isHidden();
    });
    if (hidden == 0)
        return Qt::Checked;
    return std::size_t(hidden) == things.size() ? Qt::Unchecked : Qt::PartiallyChecked;
}

Qt::ItemFlags ThingsModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags all = QAbstractItemModel::flags(index);
    if (!index.isValid() || index.column() != NAME)
        return all;
    all |= Qt::ItemIsUserCheckable;
    return rowAt(index).isThing() ? all | Qt::ItemIsEditable : all;
}

ThingsModel::Things ThingsModel::thingsIn(const QModelIndexList& rows) const
{
    Things things;
    for (const QModelIndex& row : rows)
        things.merge(thingsIn(rowAt(row)));
    return things;
}

ThingsModel::Things ThingsModel::thingsIn(const Row& row) const
{
    if (row.isThing())
        return {row.thing};
    Things things;
    for (const auto& child : row.children)
        things.insert(child->thing);
    return things;
}

QModelIndex ThingsModel::rowOf(const Thing& thing) const
{
    for (const auto& file : root->children) {
        const Row* const row = childOf(*file, thing.whole());
        const Row* const wanted =
            row && thing.part != ThingPart::WHOLE ? childOf(*row, thing) : row;
        if (row)
            return wanted ? indexOf(*wanted) : QModelIndex();
    }
    return {};
}

const ThingsModel::Row* ThingsModel::childOf(const Row& row, const Thing& thing)
{
    const auto& rows = row.children;
    const auto found = std::lower_bound(
        rows.begin(), rows.end(), thing,
        [](const std::unique_ptr<Row>& child, const Thing& of) { return child->thing < of; });
    return found != rows.end() && (*found)->thing == thing ? found->get() : nullptr;
}

QString ThingsModel::fullNameOf(const Thing& thing) const
{
    const QString own = rowOf(thing).data().toString();
    return thing.part == ThingPart::WHOLE ? own
                                          : rowOf(thing.whole()).data().toString() + ", " + own;
}

const ShownDatum* ThingsModel::find(const Thing& thing) const
{
    const bool isThere = scene && scene->has(thing) && !scene->getLook(thing).isDeleted;
    return isThere ? &scene->getShown(thing.kind)[thing.index] : nullptr;
}

SbBox3f ThingsModel::boxOf(const Thing& thing) const
{
    return find(thing) ? scene->boxOf(thing) : SbBox3f();
}

std::optional<SbColor> ThingsModel::colourOf(const Thing& thing) const
{
    const ShownDatum* const datum = find(thing);
    if (datum && thing.part != ThingPart::WHOLE)
        return datum->ofParts->getColour(*datum, thing.part);
    return datum && datum->getColour ? std::optional(datum->getColour(*datum)) : std::nullopt;
}

// What the user changes

bool ThingsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const Row& row = rowAt(index);
    if (role == Qt::CheckStateRole) {
        const bool shown = value.toInt() != Qt::Unchecked;
        show(thingsIn(row), shown);
        emit ticked(index, shown);
        return true;
    }
    const ShownDatum* const datum = find(row.thing);
    if (role != Qt::EditRole || !row.isThing() || !datum)
        return false;
    const std::string name = value.toString().toStdString();
    change({row.thing}, [&](ThingLook& look) {
        look.name.reset(); // without a name it has its own
        if (!name.empty() && name != ownName(*datum, row.thing))
            look.name = name;
    });
    return true;
}

template <typename Change>
void ThingsModel::change(const Things& things, Change change)
{
    if (!scene)
        return;
    ThingLooks next = scene->getLooks();
    for (const Thing& thing : things) {
        if (find(thing))
            change(next.ofThings[scene->idOf(thing)]);
    }
    emit looksChosen(next);
}

void ThingsModel::show(const Things& things, bool shown)
{
    if (!scene)
        return;
    ThingLooks next = scene->getLooks();
    for (const Thing& thing : things) {
        if (find(thing))
            next.show(scene->idOf(thing), shown);
    }
    emit looksChosen(next);
}

void ThingsModel::showOnly(const Things& things)
{
    if (!scene)
        return;
    ThingLooks next = scene->getLooks();
    next.showOnly(idsOf(things));
    emit looksChosen(next);
}

void ThingsModel::showAll()
{
    if (!scene)
        return;
    ThingLooks next = scene->getLooks();
    next.showAll();
    emit looksChosen(next);
}

void ThingsModel::deleteFromView(const Things& things)
{
    change(things, [](ThingLook& look) { look.isDeleted = true; });
}

void ThingsModel::setColour(const Things& things, const Colour& colour)
{
    change(things, [&colour](ThingLook& look) { look.colour = colour; });
}

std::set<ThingId> ThingsModel::idsOf(const Things& things) const
{
    std::set<ThingId> ids;
    for (const Thing& thing : things)
        ids.insert(scene->idOf(thing));
    return ids;
}

QSize ThingsModel::swatchSize() { return {32, 14}; }

} // namespace strandview
