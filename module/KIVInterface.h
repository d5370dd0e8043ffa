#pragma once

// All that a host includes.

#include "models/CKivDualLevel.h"
#include "models/CKivModel.h"
#include "models/CKivPendulum.h"
#include "models/CKivPolarizer.h"
#include "models/CKivThreeVec.h"
#include "models/CKivThreeVec2Level.h"
#include "module/ConfigureSensor.h"
#include "params/CKivPrm.h"
#include "sensor/CKiv.h"
#include "sensor/Records.h"
#include "support/StatusCodes.h"
