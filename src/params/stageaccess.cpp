#include "params/stageaccess.h"

#include "model/detector.h"

StageAccess stageAccess(int typeCode, bool showsLength, bool adjustsBySoftware)
{
    StageAccess access;
    access.unit = typeCode != SelectDetector;
    access.beamDiameter = isQuadrantType(typeCode) && showsLength;
    access.adjustSource = isPsdType(typeCode);
    access.adjustValues = access.adjustSource && adjustsBySoftware;
    return access;
}
