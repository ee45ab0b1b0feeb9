#pragma once

#include <QMainWindow>

class QTabWidget;
class ExportPage;

// The demo clinic: one tab page per subsystem of the library.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);

    // Renders every page to DIR/<n>-<page>.png; returns the files written.
    QStringList SaveScreenshots(const QString &directory);
    ExportPage *Export() const { return m_export; }

private:
    void AddPage(QWidget *page, const QString &title, const QString &fileName);

    QTabWidget *m_tabs = nullptr;
    QStringList m_fileNames;
    ExportPage *m_export = nullptr;
};
