// The plug-in interface of Velo-Cortivo: the class that a plug-in derives from, and the functions
// through which it reads the running analysis. C++11 or later; nothing else is needed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A plug-in is a shared library in the folder that tGetPluginsPath() names. It exports these plain
// functions; the first two are required:
//
//     const char* getPluginName();          its name in the menu "Plugins"
//     VeloCortivoPlugin* createPlugin();    a new plug-in object, made with new
//     const char* getPluginDescription();   shown with the name; may hold HTML with links, which
//                                           are relative to the library's folder
//     const char* getAuthor();
//     const char* getHelpFile();            opened by "Help" in the window of the plug-in; relative
//                                           to the library's folder
//
// Declare each with VELO_CORTIVO_EXPORT in front. Their texts are in the local 8-bit encoding
// (UTF-8 on most machines) and are copied.
//
// Everything happens on the thread of the program's window: the program calls the plug-in on it,
// and the plug-in calls the functions below on it, from within such a call and nowhere else. The
// time that a call takes is part of the time of the volume. While a call waits in a dialog, the
// program makes no other call to the plug-in. An exception that leaves a call is reported, and the
// plug-in is closed.

#define VELO_CORTIVO_EXPORT extern "C" __attribute__((visibility("default")))

/// The plug-in object. The program calls its operations through the table of virtual functions, so
/// their order is fixed: add your own functions in your own class, never here.
class VeloCortivoPlugin {
public:
    /// When the plug-in is closed, or could not start. It must not throw, and threads of the
    /// plug-in must have ended when it returns.
    virtual ~VeloCortivoPlugin() {}

    /// At once after createPlugin(); its window doesn't exist yet. False ends the plug-in without
    /// a message.
    virtual bool initPlugin() { return true; }

    /// When the window of the plug-in is up, and tLogText() works. False ends the plug-in.
    virtual bool executeAtLaunch() { return true; }

    /// At each volume of a run, once its data have arrived and before anything is done with them.
    /// Maps, betas and means are those of the volume before. Also in runs that are replayed, or
    /// recovered from a journal.
    virtual void executeBeforeVolume() {}

    /// At each volume, after the correction, the regions, the feedback and the model.
    virtual void executeAfterVolume() {}

    /// Once after the last volume, whichever way the run ended. No run is active any more.
    virtual void executeAfterRun() {}
};

// Conventions.
//
// Indices of ROIs, predictors, contrasts, maps, voxels and volumes start at 0. x and y run over the
// two dimensions within a slice, z over the slices. Voxel arrays have x fastest: voxel (x, y, z) is
// at (z * dimY + y) * dimX + x, and the map or volume with index m begins at m * dimX * dimY *
// dimZ. Volumes count without those that the settings skip.
//
// A document holds the run in memory; there is none before the first run. A run is active from its
// first volume to its last, so within executeBeforeVolume() and executeAfterVolume().
//
// Pointers to data are valid until the next document replaces them: fetch them anew in each call,
// and after each dialog that waits, as a run may have begun meanwhile; never free them. No function
// checks the pointers that it is given, and none shows a message.

/// Bytes that every buffer for a text must have, the closing zero included. Texts are in the local
/// 8-bit encoding; a longer one is cut, also one that the plug-in gives.
enum { veloCortivoTextSize = 4096 };

extern "C" {

// The program ----------------------------------------------------------------------------------

/// Version of this interface: 3, 2, 5.
void tGetVersionOfVCO(int* major, int* minor, int* sub);
/// Folder of the program. All folders are full paths with "/" at the end.
void tGetVCOPath(char* out);
/// Folder of the plug-in libraries.
void tGetPluginsPath(char* out);

// Folders and names of the run -----------------------------------------------------------------
// As the settings file states them, also without a document; empty without a settings file.

void tGetProjectName(char* out);
void tGetWatchFolder(char* out);    ///< watched for files of the scanner
void tGetTargetFolder(char* out);   ///< where the results go
void tGetFeedbackFolder(char* out); ///< where files for other programs go

// Geometry and progress of the run -------------------------------------------------------------

/// Volumes of the run; 0 without a document.
int tGetExpectedNrOfTimePoints(void);
/// Voxels along x, y and z; nothing is written without a document.
void tGetDimsOfFunctionalData(int* dimX, int* dimY, int* dimZ);
/// Volumes so far, the current one included, so 1 at the first volume; 0 before it, -1 without a
/// document.
int tGetCurrentTimePoint(void);
/// Index of the protocol's condition at the current volume; a volume outside all intervals counts
/// as condition 0. -1 without a document and before the first volume.
int tGetCurrentProtocolCondition(void);

// Design matrix and general linear model -------------------------------------------------------

/// Predictors of the full design: conditions, then the constant and the other confounds. 0 without
/// a document.
int tGetFullNrOfPredictors(void);
/// Predictors in the model at this volume; 0 unless a run is active, and before the model's first
/// solution.
int tGetCurrentNrOfPredictors(void);
/// Confounds among the full design, the constant included; 0 without a document.
int tGetNrOfConfoundPredictors(void);
/// Value of the full design. 0.0 unless a run is active, 0 <= predictor < full number and 0 <=
/// timePoint <= index of the current volume.
float tGetValueOfDesignMatrix(int predictor, int timePoint);
/// Current beta, in units of the data. 0.0 unless a run is active, 0 <= predictor < current number
/// and the voxel is inside. Predictors of the model stand in order of their columns; one that has
/// not begun yet is not among them.
double tGetBetaOfVoxel(int predictor, int x, int y, int z);
/// All betas, one volume of values for each predictor of the model. Null unless a run is active.
double* tGetBetaMaps(void);

// Samples --------------------------------------------------------------------------------------

/// Sample of a voxel, as corrected and smoothed; in executeBeforeVolume() the current volume is as
/// it was measured. 0.0 outside the volume, for volumes that have not been measured yet, and
/// without a document.
float tGetValueOfVoxelAtTime(int x, int y, int z, int timePoint);
/// A pointer for each volume of the run to its samples, zeros for volumes to come. Null without a
/// document, or when it holds no volumes (the analysis of several runs).
/// Only those of the current volume may be changed, in executeBeforeVolume(): what is computed from
/// a volume is computed once.
short** tGetTimeCourseData(void);

// Statistical maps -----------------------------------------------------------------------------

/// Contrasts of the run; 0 without a document.
int tGetNrOfContrasts(void);
/// A map for each contrast, of which the first ones belong to the contrasts that are selected, in
/// their order; the others are 0. Null without a document, or before maps exist.
float* tGetContrastMaps(void);
/// Value of the map in this place; 0.0 when any index is out of bounds.
float tGetMapValueOfVoxel(int contrast, int x, int y, int z);

// Regions of interest --------------------------------------------------------------------------

/// 0 without a document.
int tGetNrOfROIs(void);
/// Mean of the ROI's voxels in use at the current volume; 0.0 for a ROI that doesn't exist, and in
/// executeBeforeVolume(), where it isn't known yet.
float tGetMeanOfROI(int roi);
/// -1 for a ROI that doesn't exist.
int tGetNrOfVoxelsOfROI(int roi);
/// Beta of the ROI's time course in units of the data, of the model of its plot; 0.0 when an index
/// is out of bounds. `predictor` counts in the full design.
float tGetBetaOfROI(int roi, int predictor);
/// Writes the coordinates and gives true; gives false and writes nothing when an index is out of
/// bounds.
bool tGetCoordsOfVoxelOfROI(int roi, int voxel, int* x, int* y, int* z);

// Classifier of the run ------------------------------------------------------------------------

/// -3 while its dialog is closed, -2 while it doesn't predict, else the number of classes.
int tGetNumberOfClasses(void);
/// -3 and -2 as above, -1 without classes, 0 when there is no output yet; else the predicted class,
/// from 1, with n * (n - 1) / 2 values written for n classes, one for each pair of them.
int tGetCurrentClassifierOutput(float* out);

// Maps of the plug-in --------------------------------------------------------------------------

/// Registers maps. Call it in initPlugin() or executeAtLaunch(): the memory is made when a run is
/// prepared or loaded, so for the run in memory it is too late. False for a count below 1, without
/// a change. The first map is shown for positive and negative values, the others not at all; all
/// are named "no name".
bool tRegisterMaps(int count);
/// Ignored for an index out of bounds, like the next one. Shown as one line of at most 100
/// characters.
void tSetPluginMapName(int index, const char* name);
/// 0 not shown, 1 positive values, 2 negative values, 3 both. At most four maps are shown at a
/// time, the first ones with a status above 0.
void tSetDisplayStatusOfMap(int index, int status);
/// Smallest value that is coloured, for this run and those to come; 2.5 at first. The operator's
/// thresholds follow. Ignored unless finite.
void tSetPluginMapsThreshold(float threshold);
/// Shows the maps of the plug-in over the slices and in the list, in place of the contrasts.
void tShowPluginMaps(bool show);
/// The list, and after a run the slices, show the maps as they are now. During a run the slices
/// follow at the end of each volume.
void tUpdateMapList(void);
/// The maps, one volume of values each, to be filled; 0 at the start of a run. Null without a
/// document, or if none were registered before its run. As many as were registered then: a later
/// tRegisterMaps() changes neither number nor place of them.
float* tGetPluginMaps(void);

// Dialogs and log ------------------------------------------------------------------------------
// All but the first two wait for the operator, and the run waits with them; its volumes are
// analysed as soon as the operator has answered.

/// A line in the window of the plug-in, as plain text; ignored when there is none.
void tLogText(const char* text);
/// Information with an OK button. While a run is recorded it doesn't wait for an answer.
void tMessageBox(const char* text);
/// True for Yes.
bool tYesNoMessageBox(const char* text);
/// Asks for a value within the bounds; the default is clamped to them. min - 1 when the operator
/// cancels.
int tGetIntegerInput(const char* text, int defaultValue, int min, int max);
/// With 3 decimals; min - 1.0 when the operator cancels.
float tGetFloatInput(const char* text, float defaultValue, float min, float max);
/// False, with an empty text, when the operator cancels; so it is with the next two.
bool tGetTextInput(const char* text, const char* defaultText, char* out);
/// Full path of an existing file. `path` is where the dialog starts: empty for the folder that was
/// used last, to which a name without a folder is joined. `filter` is like "Maps (*.map)", several
/// joined by ";;".
bool tGetOpenFileName(const char* caption, const char* path, const char* filter, char* out);
/// Full path of a file to write, likewise.
bool tGetSaveFileName(const char* caption, const char* path, const char* filter, char* out);

// Fourier transforms ---------------------------------------------------------------------------
// Those of FFTW 3 in single precision, under its own names with "t_" in front; its manual holds.
// For voxel arrays n0 is dimZ, n1 dimY and n2 dimX. If fftw3.h is included first, its types are
// used.

} // extern "C"

#ifndef FFTW3_H
typedef float fftwf_complex[2]; ///< real and imaginary part
typedef struct fftwf_plan_s* fftwf_plan;
enum { FFTW_MEASURE = 0, FFTW_ESTIMATE = 64 };
#endif

extern "C" {

void* t_fftwf_malloc(unsigned long size);
void t_fftwf_free(void* memory);
/// From n0 * n1 * n2 values to n0 * n1 * (n2 / 2 + 1) complex ones.
fftwf_plan t_fftwf_plan_dft_r2c_3d(int n0, int n1, int n2, float* in, fftwf_complex* out,
                                   unsigned flags);
/// And back, without division by the number of values; the input is overwritten.
fftwf_plan t_fftwf_plan_dft_c2r_3d(int n0, int n1, int n2, fftwf_complex* in, float* out,
                                   unsigned flags);
void t_fftwf_execute(const fftwf_plan plan);
void t_fftwf_destroy_plan(fftwf_plan plan);

// Matrix products ------------------------------------------------------------------------------
// Matrices are row-major without gaps.

/// C (m x n) = op(A) op(B): A is m x k, or k x m if it is transposed; B is k x n, or n x k.
void t_intel_matrix_matrix_mult_f(const float* A, const float* B, float* C, int m, int n, int k,
                                  bool transposeA, bool transposeB);
void t_intel_matrix_matrix_mult_d(const double* A, const double* B, double* C, int m, int n, int k,
                                  bool transposeA, bool transposeB);
/// y = op(A) x. A is m x n, transposed or not: y has m values, or n if A is transposed.
void t_intel_matrix_vector_mult_f(const float* A, const float* x, float* y, int m, int n,
                                  bool transposeA);
void t_intel_matrix_vector_mult_d(const double* A, const double* x, double* y, int m, int n,
                                  bool transposeA);

} // extern "C"
