#pragma once

#include "Core/Energy/ThermalLevel.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vespra {

/// One thermometer and the temperatures at which the machine acts by itself, in degrees Celsius.
struct ThermalSample {
    std::string sensor;
    double temperature = 0;
    /// Where the machine starts to slow down.
    std::optional<double> passiveTrip;
    /// The lower of its hot and its critical trip. A sensor without one says nothing about the machine.
    std::optional<double> limit;
};

/// Derives a level from temperatures: fair from 20 degrees below the limit on, serious from 10 (or from the passive
/// trip, if that lies closer to the limit), critical from 3. It looks at the average of the last 30 s, because laptops
/// run 5 degrees below the limit under an honest full load; a reading at the limit counts at once. A level is left when
/// the average is 5 degrees below its threshold. The hottest sensor counts.
class ThermalEstimate {
public:
    /// Takes the readings of one moment and returns the level by now. A sensor that is missing, or does not tell its
    /// limit, keeps its level for 30 s and is forgotten then: many fail to read now and then.
    ThermalLevel update(const std::vector<ThermalSample>& samples, ContinuousInstant now);

private:
    struct Sensor {
        std::deque<std::pair<ContinuousInstant, double>> history; // never empty once followed
        ThermalLevel level = ThermalLevel::nominal;
    };

    static void follow(Sensor& sensor, const ThermalSample& sample, ContinuousInstant now);
    void forgetSilentSensors(ContinuousInstant now);

    std::map<std::string, Sensor> sensors_;
};

} // namespace vespra
