#include "KIVInterface/InstrumentClasses.h"

CBBManager& CBBManager::operator=(const CBBManager&) = default;
CLevel& CLevel::operator=(const CLevel&) = default;
CPhotoSensor& CPhotoSensor::operator=(const CPhotoSensor&) = default;

int CADMModule::getThermalStatus() const {
    return thermalStatus;
}
