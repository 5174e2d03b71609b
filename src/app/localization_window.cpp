#include "app/localization_window.h"

#include "app/qt_text.h"
#include "base/format.h"
#include "geodesy/localization_plot.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSvgRenderer>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace tramline::app {

namespace {

// Numbers (the position, heights, coordinates, qualities) to the right so
// that their decimal points line up; the use flags centred under their
// headers; the description read from the left.
Qt::Alignment alignmentOf(int column) {
    if (column <= 6)
        return Qt::AlignRight | Qt::AlignVCenter;
    if (column <= 8)
        return Qt::AlignCenter;
    return Qt::AlignLeft | Qt::AlignVCenter;
}

QTableWidget *pointTable(const geodesy::Localization &loc, QWidget *parent) {
    const auto columns = geodesy::alignmentColumnNames();
    auto *table = new QTableWidget(static_cast<int>(loc.points.size()),
                                   static_cast<int>(columns.size()), parent);
    QStringList headers;
    for (const auto &c : columns)
        headers << qtr(c.c_str());
    table->setHorizontalHeaderLabels(headers);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (std::size_t row = 0; row < loc.points.size(); ++row) {
        const geodesy::AlignmentPoint &p = loc.points[row];
        // The first column holds the GPS position itself.
        const std::string texts[] = {format("%.9f, %.9f", p.latitude, p.longitude),
                                     format("%.4f", p.ellipsoidHeight),
                                     format("%.4f", p.localX),
                                     format("%.4f", p.localY),
                                     format("%.4f", p.localZ),
                                     format("%.4f", p.hrms),
                                     format("%.4f", p.vrms),
                                     p.useHorizontal ? "Y" : "N",
                                     p.useVertical ? "Y" : "N",
                                     p.description};
        for (int column = 0; column < static_cast<int>(columns.size()); ++column) {
            auto *item = new QTableWidgetItem(qstr(texts[column]));
            item->setTextAlignment(alignmentOf(column));
            table->setItem(static_cast<int>(row), column, item);
        }
    }
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    return table;
}

} // namespace

LocalizationWindow::LocalizationWindow(const geodesy::Localization &localization,
                                       const geodesy::LocalizationReportSettings &reportSettings,
                                       QWidget *parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("Define Localization"));
    setWindowTitle(qtr("Define Localization"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_points = pointTable(localization, m_tabs);
    m_tabs->addTab(m_points, qtr("Localization Points"));
    auto *report = new QPlainTextEdit(m_tabs);
    report->setReadOnly(true);
    report->setLineWrapMode(QPlainTextEdit::NoWrap);
    report->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    report->setPlainText(qstr(geodesy::localizationReportText(localization, reportSettings)));
    m_tabs->addTab(report, qtr("Define Localization"));
    // The picture is drawn once into an image: it never changes while shown.
    const std::string svg = geodesy::localizationPlotSvg(localization);
    QSvgRenderer renderer(QByteArray(svg.data(), static_cast<qsizetype>(svg.size())));
    QImage image(renderer.defaultSize(), QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    auto *picture = new QLabel;
    picture->setPixmap(QPixmap::fromImage(image));
    auto *plot = new QScrollArea(m_tabs);
    plot->setWidget(picture);
    m_tabs->addTab(plot, qtr("Residual Plot"));
    layout->addWidget(m_tabs);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(820, 640);
}

QString LocalizationWindow::reportText() const {
    for (int i = 0; i < m_tabs->count(); ++i)
        if (auto *text = qobject_cast<QPlainTextEdit *>(m_tabs->widget(i)))
            return text->toPlainText();
    return {};
}

} // namespace tramline::app
