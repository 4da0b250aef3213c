#pragma once

#include <QString>

#include <array>
#include <memory>

/// Type code of a detector: the index in the detector combo boxes and the `model` attribute of
/// the setup file.
enum DetectorType : int {
    SelectDetector = 0,
    QuadrantDetector = 1,
    PsdDetector = 2,
    WidDetector = 3,
    UvPsd4Detector = 4,
    UvPsd10Detector = 5,
};

/// What the signals of a stage are shown in. Only stages in the same unit can share a plot.
enum class PositionUnit : int { Volt = 0, Micrometre = 1, Millimetre = 2 };

class Detector;

/// One of the detectors that a stage can have.
struct DetectorKind
{
    DetectorType type;
    /// As the user reads it, before translation in the context "ParamsDialog".
    const char* name;
    /// Its length scale is the beam diameter.
    bool isQuadrant;
    /// It is position sensitive.
    bool isPsd;
    /// Makes one with the beam diameter and the calculation flag of another.
    std::unique_ptr<Detector> (*make)(const Detector& source);
};

/// All of them; the type code is the index.
constexpr int detectorKindCount = 6;
using DetectorKinds = std::array<DetectorKind, detectorKindCount>;
const DetectorKinds& detectorKinds();

/// Whether a number is a type code.
bool isDetectorType(int typeCode);
/// True for the detectors whose length scale is the beam diameter.
bool isQuadrantType(int typeCode);
/// True for the position sensitive detectors.
bool isPsdType(int typeCode);

/// What the signals of one stage mean as a length. The controller reports volts only and does not
/// know its detector: the user does. The base class is the stage for which none was chosen.
class Detector
{
public:
    static constexpr double defaultBeamDiameterUm = 50.0;

    Detector() = default;
    /// `calculation` 0 shows volts, any other value shows length.
    Detector(double beamDiameterUm, int calculation);
    /// Takes beam diameter and calculation flag of a detector of any type.
    Detector(const Detector& other) = default;
    Detector& operator=(const Detector&) = delete;
    virtual ~Detector() = default;

    /// Length of a position signal, in the unit of this detector with `calculation` set. Both
    /// arguments are volts. A quadrant detector gives a value that is not finite for a signal
    /// that reaches the intensity, and for an intensity of 0.
    virtual double calculatePosition(double signalV, double intensityV) const;
    virtual bool usesBeamDiameter() const { return false; }
    /// Whether the stage can move its target by adjust-in and use Set & Hold.
    virtual bool supportsAdjustIn() const { return false; }
    virtual int typeCode() const { return SelectDetector; }
    virtual int recordDecimals() const { return 3; }
    virtual int displayDecimals() const { return 2; }
    /// Ends of the position axis.
    virtual double maxPosition() const { return voltLimit; }
    virtual double minPosition() const { return -voltLimit; }
    virtual PositionUnit unitCode() const { return PositionUnit::Volt; }
    /// The text of the unit, as at the axis of a plot.
    virtual QString unit() const;

    /// Micrometres.
    double beamDiameter = defaultBeamDiameterUm;
    int calculation = 0;

protected:
    static constexpr double voltLimit = 5.0;

    bool showsLength() const { return calculation != 0; }
};

/// Lateral-effect detector. All kinds have the same limits in length, whatever length the full
/// signal of a kind means.
class PSD : public Detector
{
public:
    PSD() = default;
    explicit PSD(const Detector& other);

    double calculatePosition(double signalV, double intensityV) const override;
    bool supportsAdjustIn() const override { return true; }
    int typeCode() const override { return PsdDetector; }
    int recordDecimals() const override { return showsLength() ? 4 : 3; }
    int displayDecimals() const override { return showsLength() ? 3 : 2; }
    double maxPosition() const override;
    double minPosition() const override;
    PositionUnit unitCode() const override
    {
        return showsLength() ? PositionUnit::Millimetre : PositionUnit::Volt;
    }
};

class PSD_UV10 final : public PSD
{
public:
    PSD_UV10() = default;
    explicit PSD_UV10(const Detector& other);

    double calculatePosition(double signalV, double intensityV) const override;
    int typeCode() const override { return UvPsd10Detector; }
};

class PSD_UV4 final : public PSD
{
public:
    PSD_UV4() = default;
    explicit PSD_UV4(const Detector& other);

    double calculatePosition(double signalV, double intensityV) const override;
    int typeCode() const override { return UvPsd4Detector; }
};

/// Quadrant detector: a Gaussian beam's normalised difference signal is the error function of its
/// displacement.
class QD : public Detector
{
public:
    QD() = default;
    explicit QD(const Detector& other);

    double calculatePosition(double signalV, double intensityV) const override;
    bool usesBeamDiameter() const override { return true; }
    int typeCode() const override { return QuadrantDetector; }
    int recordDecimals() const override { return showsLength() ? 2 : 3; }
    int displayDecimals() const override { return showsLength() ? 1 : 2; }
    double maxPosition() const override;
    double minPosition() const override;
    PositionUnit unitCode() const override
    {
        return showsLength() ? PositionUnit::Micrometre : PositionUnit::Volt;
    }
};

class WID final : public QD
{
public:
    WID() = default;
    explicit WID(const Detector& other);

    double calculatePosition(double signalV, double intensityV) const override;
    int typeCode() const override { return WidDetector; }
};

/// A detector of the type `typeCode` with the beam diameter and the calculation flag of `source`.
/// Null for a number that is no type code.
std::unique_ptr<Detector> makeDetector(int typeCode, const Detector& source);

/// Inverse error function for -1 < x < 1, by the closed approximation of S. Winitzki (2008) with
/// a = 0.147. Infinite at -1 and 1, not a number beyond.
double inverseErf(double x);
