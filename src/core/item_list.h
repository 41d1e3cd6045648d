#pragma once

#include <QAbstractListModel>
#include <QItemSelectionModel>
#include <QStringList>

// The rows of a list box and their selection, kept apart from any widget so
// that commands run the same in the window, the command-line program and the
// tests. A view shows it through `selection_model()`; the hidden lists that
// commands share are plain instances.
//
// Reading row i past the end gives "", as the commands rely on; a negative
// row is an error (RunError), as it is for the list box.
class ItemList : public QAbstractListModel {
    Q_OBJECT
public:
    explicit ItemList(QObject* parent = nullptr);

    int count() const { return static_cast<int>(rows_.size()); }
    bool empty() const { return rows_.isEmpty(); }
    QString item(int row) const;
    void set_item(int row, const QString& text);
    const QStringList& items() const { return rows_; }

    void add(const QString& text);
    // Adds many rows in one change, for long lists.
    void add_many(const QStringList& texts);
    void remove(int row);
    void clear();
    // Replaces all rows at once.
    void set_items(const QStringList& texts);

    bool selected(int row) const;
    void set_selected(int row, bool on);
    void clear_selection();
    QList<int> selected_rows() const;
    // The current row ("ListIndex"), -1 for none.
    int list_index() const;
    void set_list_index(int row);

    QItemSelectionModel* selection_model() { return &selection_; }

    // QAbstractListModel
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void check_row(int row) const;
    QStringList rows_;
    QItemSelectionModel selection_;
};
