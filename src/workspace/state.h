#pragma once
// The program's shared state: lives as long as the program, one of each.
#include <QString>
#include <array>
#include <memory>

#include "mapping/collection.h"
#include "mapping/dataconnection.h"
#include "mapping/geometry.h"
#include "mapping/symbol.h"

constexpr int MAX_LAYERS = 27;

inline std::array<QString, 28> sStandardFiles;   // filled by frmMain's load
inline QString sDataDirectory;                   // directory of the current dataset
inline DataConnectionPtr oDataConnection;        // the connection of the last load
inline std::shared_ptr<Collection<int>> cLayerIndex = std::make_shared<Collection<int>>();  // Tag -> index in Layers

inline bool bQueryDrawn = false;
inline bool bShowMarkedShape = false;
inline ShapePtr oMarkedShape;    // nothing assigns it: a prepared hook
inline SymbolPtr oMarkedSymbol;
inline bool bSkipDropDown3Click = false;
inline QString sSolarLayerFile;
inline QString sSolarField;

// The result model of the last query run.
inline bool bCancelQuery = false;
inline bool bQueryRunning = false;
inline std::shared_ptr<Collection<QVariant>> cFieldValues;
inline QString sFieldName;
inline std::shared_ptr<Collection<ShapePtr>> cShapes;
inline std::shared_ptr<Collection<SymbolPtr>> cSymbols;
inline std::shared_ptr<Collection<float>> cGridDistances;
inline float sngRoadDistance = 0;
inline float sngTransmissionDistance = 0;
inline float sngSolarMinimum = 0;

// Puts every variable back to its start value (tests start each case fresh).
void ResetProgramState();
