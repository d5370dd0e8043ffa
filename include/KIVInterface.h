#pragma once

// All that a host includes.

#include "KIVInterface/CKiv.h"
#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivModel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"
#include "KIVInterface/ConfigureSensor.h"
#include "KIVInterface/Records.h"
#include "KIVInterface/StatusCodes.h"
#include "KIVInterface/Version.h"
