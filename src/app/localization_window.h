// The localization window: the alignment points under the point list's
// column names, the "Define Localization" report and the picture of the
// residuals, one tab each.
#pragma once

#include "geodesy/localization.h"
#include "geodesy/localization_report.h"

#include <QDialog>

class QTabWidget;
class QTableWidget;

namespace tramline::app {

class LocalizationWindow : public QDialog {
    Q_OBJECT
public:
    LocalizationWindow(const geodesy::Localization &localization,
                       const geodesy::LocalizationReportSettings &reportSettings,
                       QWidget *parent = nullptr);

    QTabWidget *tabs() const { return m_tabs; }
    QTableWidget *pointList() const { return m_points; }
    QString reportText() const;

private:
    QTabWidget *m_tabs;
    QTableWidget *m_points;
};

} // namespace tramline::app
