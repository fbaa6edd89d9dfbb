#pragma once

#include <QObject>
#include <QString>

#include "Arrivals.h"

namespace zarvik::bench {

/// Takes the results of scripts. Qt's compiler reads this.
class QtReceiver : public QObject {
    Q_OBJECT

  public:
    explicit QtReceiver(Arrivals& results) : results(results) {}

  public slots:
    void add(const QString& result) { results.add(result.toStdString()); }

  private:
    Arrivals& results;
};

}  // namespace zarvik::bench
