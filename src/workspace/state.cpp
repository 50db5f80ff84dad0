#include "workspace/state.h"

void ResetProgramState()
{
    sStandardFiles = {};
    sDataDirectory.clear();
    oDataConnection.reset();
    cLayerIndex = std::make_shared<Collection<int>>();
    bQueryDrawn = false;
    bShowMarkedShape = false;
    oMarkedShape.reset();
    oMarkedSymbol.reset();
    bSkipDropDown3Click = false;
    sSolarLayerFile.clear();
    sSolarField.clear();
    bCancelQuery = false;
    bQueryRunning = false;
    cFieldValues.reset();
    sFieldName.clear();
    cShapes.reset();
    cSymbols.reset();
    cGridDistances.reset();
    sngRoadDistance = 0;
    sngTransmissionDistance = 0;
    sngSolarMinimum = 0;
}
