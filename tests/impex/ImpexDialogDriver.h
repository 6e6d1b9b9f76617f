#pragma once

// Driving the import/export dialog's trees and buttons by control id, as a user would.
#include "controls/ClrTreeCtrl.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"

#include <QAbstractButton>
#include <QtTest>

inline CClrTreeCtrl* Tree(QWidget* dlg, int id)
{
    return findControl<CClrTreeCtrl>(dlg, id);
}

inline void Click(QWidget* dlg, int id)
{
    auto* button = findControl<QAbstractButton>(dlg, id);
    QVERIFY2(button, qPrintable(QString::number(id)));
    button->click();
}

// Makes the row at `path` ("Group/Item", as rowAt takes it) the tree's current row.
inline void Select(QWidget* dlg, int treeId, const QString& path)
{
    CClrTreeCtrl* tree = Tree(dlg, treeId);
    QTreeWidgetItem* row = rowAt(tree, path);
    QVERIFY2(row, qPrintable(path));
    tree->setCurrentItem(row);
}
