/// Bars for channels' levels, with names.
#pragma once

#include <tessel/scopes/Meters.h>

#include <QString>
#include <QWidget>
#include <string>
#include <vector>

namespace tessel::view {

/// [ui-thread]
class MetersPanel final : public QWidget {
public:
    static constexpr std::size_t kMostChannels = 8;

    explicit MetersPanel(QWidget* parent = nullptr);

    /// @param segment  of a channel identification; empty: none
    void Show(std::vector<std::string> names, std::vector<scopes::MeterReading> readings,
              const QString& segment);

    [[nodiscard]] QSize sizeHint() const override { return {200, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<std::string> mNames;
    std::vector<scopes::MeterReading> mReadings;
    QString mSegment;
};

/// "-18.0", or "-∞" for silence.
[[nodiscard]] QString LevelText(double db);

} // namespace tessel::view
