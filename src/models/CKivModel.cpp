#include "KIVInterface/CKivModel.h"

CKivModel::CKivModel() = default;
CKivModel::CKivModel(const CKivModel&) = default;
CKivModel& CKivModel::operator=(const CKivModel&) = default;
CKivModel::~CKivModel() = default;

void CKivModel::UpdateSFactors(float*, int) {}

bool CKivModel::CalTranxMatrix(double* const, double, double, int, bool, bool) {
    return true;
}

void CKivModel::UpdateQVCParameters(float*, int) {}
void CKivModel::UpdateLevel1Parameters(float*, int) {}
void CKivModel::UpdateLevel2Parameters(float*, int) {}
void CKivModel::GetQVCMatrix(float*, int) {}

int CKivModel::set_iMMode(int mode) {
    if (mode >= 0)
        iMMode = mode;
    return iMMode;
}
