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
/// bytes, cupsHeight of them) and sets its height and sizes. Where the page comes
/// from a PDF the lines are only consumed. What no line fills becomes white.
void GetCupsRasterData(cups_page_header2_t header, cups_raster_t* raster, ppd_file_t* ppd,
                       unsigned int stride) noexcept;

/// Puts the page that pdftoppm renders from the job's PDF, at the header's
/// resolution, in place of the page bitmap of `g_oemPDEV`: rows of blue, green, red
/// bytes padded with 0 to a multiple of four, and the geometry of the picture.
/// `ppmName` (256 bytes) receives the picture's file name, argv[1] is the job id.
/// Where the picture cannot be had, or lacks pixels, the bitmap stays as it is and only
/// the log says so. The picture's file is removed, unless it holds no pixels at all.
void UsePdfprocess(ppd_file_t* ppd, char* ppmName, char* argv[], int page,
                   cups_page_header2_t header, const char* pdfPath) noexcept;

/// Runs pdftoppm on one page (from 1) of the PDF and names its output file in
/// `ppmName` (256 bytes): empty where the name cannot be foreseen, or where the job
/// id, the path, what stands at it, a taken file name or the job's cancellation forbids
/// running it. The page count is taken once for each document. The tool ends when the
/// job is cancelled or its limits (ToolLimits.h) are reached. Does nothing where an
/// argument is absent.
void PdftoppmCmd(char* ppmName, char* argv[], int page, const cups_page_header2_t* header,
                 const char* pdfPath) noexcept;

/// Decimal digits (1 to 10) of the PDF's page count as pdfinfo reports it; -1 where
/// it reports none, or where the path or what stands at it forbids running it. Counts
/// at each call; waits a second for other jobs that count.
int GetPpmFilePagesBits(const char* pdfPath) noexcept;

/// Reads a whole file into a new buffer, which the caller frees with free(). Leaves
/// both outputs as they are when the file cannot be opened, is no regular file of
/// this user (links are not followed), or does not fit memory. An empty file gives
/// a size of 0 and no buffer.
void PpmFileData(const char* path, unsigned char** buffer, unsigned int* size) noexcept;

/// Finds width, height (pixels) and pixel data in a binary pixmap held in memory and
/// turns the pixels from red, green, blue to blue, green, red in place, as far as
/// the buffer holds them. Returns the first pixel, null where the header is
/// incomplete; the size is stored as soon as its own line allows.
unsigned char* PpmBitmapData(unsigned char* buffer, unsigned int size, int* width,
                             int* height) noexcept;

/// Sets the page geometry of `g_oemPDEV` for a picture: sizes in bytes from the
/// stride, width and height in pixels.
void InitPdfProcessOemPDEV(unsigned int stride, int width, int height) noexcept;

/// SIGTERM handler.
void CancelJob(int signal) noexcept;

/// The clean-up at the end of a job as a function: removes the temporary PDF
/// (unless its path was made from a job id that leads elsewhere), closes the PPD, the stream and
/// the descriptor. Returns the result of the last close; 1, with nothing done, without a stream, 0
/// without a PPD or path.
int Shutdown(const char* pdfPath, ppd_file_t* ppd, cups_raster_t* raster, int fd) noexcept;
