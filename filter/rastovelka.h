// The driver: one job from its arguments to its exit status.
//
// The job's four records are process-wide and live for the whole job. One job a
// process: nothing here resets them.
#pragma once

#include <cups/ppd.h>
#include <cups/raster.h>

#include <csignal>

#include "DeviceRecords.h"

/// 1 once SIGTERM has asked the job to end: the page in progress is finished, no
/// further one is read.
extern volatile std::sig_atomic_t Canceled;

extern tagOEMCFG g_oemCfg;
extern _DEVMODE g_devMode;
extern _OEMPDEV g_oemPDEV;
extern _DEVOBJ g_devObj;

/// Runs a job with the arguments of a CUPS filter: job-id, user, title, copies,
/// options, [file]. Returns the exit status: 1 when no page header was read, else
/// 0, also when the job could not be started.
int RunFilter(int argc, char* argv[]) noexcept;

/// Empties the job log and starts the log manager on it.
void StartLog4z() noexcept;

/// Checks the arguments and opens the raster stream on the file they name or on
/// standard input. Returns 0; 1 on failure, after a second's pause where a named
/// file cannot be opened.
int OpenPageStream(int argc, char* argv[], int* fd, cups_raster_t** raster) noexcept;

/// Opens the PPD that the environment names, marks its defaults and the job's
/// options. `*ppd` is null where it cannot be opened, which is reported on
/// standard error.
void InitializeSetting(const char* options, ppd_file_t** ppd) noexcept;

/// Logs a page header.
void StartPage(ppd_file_t* ppd, const cups_page_header2_t* header, int page) noexcept;

/// Fills the job's records from the first page's header.
void StartDoc(ppd_file_t* ppd, cups_page_header2_t header) noexcept;

/// Reads the page's lines into the page bitmap of `g_oemPDEV` (rows of `stride`
/// bytes, cupsHeight of them, already white) and sets its height and sizes. Where
/// the page comes from a PDF the lines are only consumed. Lines that are missing
/// stay white.
void GetCupsRasterData(cups_page_header2_t header, cups_raster_t* raster, ppd_file_t* ppd,
                       unsigned int stride) noexcept;

/// SIGTERM handler.
void CancelJob(int signal) noexcept;

/// The clean-up at the end of a job as a function: removes the temporary PDF,
/// closes the PPD, the stream and the descriptor. Returns the result of the last
/// close; 1, with nothing done, without a stream, 0 without a PPD or path.
int Shutdown(const char* pdfPath, ppd_file_t* ppd, cups_raster_t* raster, int fd) noexcept;
