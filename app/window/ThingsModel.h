// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_THINGSMODEL_H
#define STRANDVIEW_APP_WINDOW_THINGSMODEL_H

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <QAbstractItemModel>
#include <QSize>

#include "scene/DataScene.h"

namespace strandview {

/// What a scene shows, as a tree: files, below each the things in it in the order in which they
/// are drawn, and below birods and DNA their strands, but for those that were deleted from view. A
/// name has a tick, which hides and shows the strand, the thing or all of the file; a thing or a
/// strand has its colour beside.
///
/// In another frame the rows of what is still there stay, and so does what is chosen of them.
class ThingsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { NAME, COLOUR };
    using Things = std::set<Thing>;

    explicit ThingsModel(QObject* parent);
    ~ThingsModel() override;

    /// Null for nothing. The scene outlives the model, or another one is given.
    void setScene(DataScene* shown, bool isOfSameFiles);
    /// The scene shows another frame.
    void follow();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    /// Those in these rows, of a file all things.
    Things thingsIn(const QModelIndexList& rows) const;
    /// Its name; invalid of what has no row.
    QModelIndex rowOf(const Thing& thing) const;
    /// As a list names it that has no tree: "DNA 1, strand 2".
    QString fullNameOf(const Thing& thing) const;
    std::set<ThingId> idsOf(const Things& things) const;
    /// That of a strand is its thing's; null of what has no row.
    const ShownDatum* find(const Thing& thing) const;
    /// In the scene; empty of what has no row.
    SbBox3f boxOf(const Thing& thing) const;
    /// Nothing of what has none.
    std::optional<SbColor> colourOf(const Thing& thing) const;

    // Of those that have a row, what is asked for by looksChosen()
    void show(const Things& things, bool shown);
    void showOnly(const Things& things); ///< and hides all others
    void showAll();                      ///< and what was deleted
    void deleteFromView(const Things& things);
    void setColour(const Things& things, const Colour& colour);

    static QSize swatchSize(); ///< of a colour

signals:
    /// Who hears of it gives them to the scene.
    void looksChosen(const strandview::ThingLooks& next);
    /// The tick of a row.
    void ticked(const QModelIndex& row, bool shown);

private:
    struct Row; // of the tree
    struct File
    {
        std::string name;
        std::vector<Thing> things;
    };

    static const Row* childOf(const Row& row, const Thing& thing); ///< null for none
    static const Row& rowAt(const QModelIndex& index);
    QModelIndex indexOf(const Row& row, int column = NAME) const;
    std::vector<File> filesShown() const;
    void syncFiles(const std::vector<File>& files);
    void syncThings(Row& file, const std::vector<Thing>& things);
    void syncParts(Row& thing);
    std::vector<Thing> partsShown(const Thing& thing) const;
    std::unique_ptr<Row> makeRow(const Thing& thing) const;
    void insert(Row& parent, std::size_t at, std::vector<std::unique_ptr<Row>> rows);
    void remove(Row& parent, std::size_t first, std::size_t count);
    Qt::CheckState tickOf(const Row& row) const;
    Things thingsIn(const Row& row) const;
    template <typename Change>
    void change(const Things& things, Change change);

    DataScene* scene = nullptr;
    std::unique_ptr<Row> root;
};

} // namespace strandview

#endif
