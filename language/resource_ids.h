// Identifiers of what the language libraries hold. Read by the resource compiler and by C++ code. The build checks
// that the IDS_ numbers agree with string_ids.txt, which also says what each text is for.
#ifndef TESSARY_LANGUAGE_RESOURCE_IDS_H
#define TESSARY_LANGUAGE_RESOURCE_IDS_H

// Bitmaps
#define IDB_PORTRAIT 111
#define IDB_LANDSCAPE 113
#define IDB_LOGO 118
#define IDB_BLANK_PAGE 122

// Pages of the printing preferences
#define IDD_PAPER 107
#define IDD_LAYOUT 112
#define IDD_ADVANCED 117
#define IDD_FINISHING 120
#define IDD_WATERMARK 121

// Layout page
#define IDC_ORIENTATION 1027
#define IDC_DUPLEX 1028
#define IDC_ORIENTATION_PICTURE 1029
#define IDC_PAGES_PER_SHEET 1042
#define IDC_PAGE_ORDER 1043

// Paper and quality page
#define IDC_PAPER_SIZE 1026
#define IDC_MEDIACOMBO 1031
#define IDC_COLOR 1032
#define IDC_PRINT_QUALITY 1033
#define IDC_PAPER_SOURCE 1044
#define IDC_MEDIALABEL 1047

// Advanced page
#define IDC_PRINT_ON_CLIENT 1039
#define IDC_PREVIEW_ON_CLIENT 1040
#define IDC_LOGO 1041
#define IDC_COMPRESSION 1048
#define IDC_PRE_DIALOG 1101
#define IDC_PRINT_AS_IMAGE 1102
#define IDC_COPIES 1201
#define IDC_COPIES_SPIN 1301

// Finishing page
#define IDC_STAPLE 1045
#define IDC_PUNCH 1046

// Watermark page
#define IDC_WATERMARK_TEXT 1049
#define IDC_WATERMARK_PREVIEW 1050
#define IDC_WATERMARK_FONT 1051
#define IDC_WATERMARK_ADD 1052
#define IDC_WATERMARK_DELETE 1053
#define IDC_WATERMARK_IN_FRONT 1056
#define IDC_WATERMARK_BEHIND 1057
#define IDC_WATERMARK_FIRST_PAGE 1058

// Layout page: orientation
#define IDS_PORTRAIT 2001
#define IDS_LANDSCAPE 2002

// Paper and quality page: colour
#define IDS_COLOR 2003
#define IDS_BLACK_WHITE 2004

// Layout page: printing on both sides
#define IDS_DUPLEX_NONE 2005
#define IDS_FLIP_LONG_EDGE 2006
#define IDS_FLIP_SHORT_EDGE 2007

// Paper and quality page: print quality
#define IDS_QUALITY_HIGH 2008
#define IDS_QUALITY_MEDIUM 2009
#define IDS_QUALITY_LOW 2010
#define IDS_QUALITY_DRAFT 2011

// Layout page: the way in which several pages follow each other on one sheet
#define IDS_NUP_RIGHT_DOWN 2012
#define IDS_NUP_DOWN_RIGHT 2013
#define IDS_NUP_LEFT_DOWN 2014
#define IDS_NUP_DOWN_LEFT 2015
#define IDS_NUP_RIGHT_UP 2016
#define IDS_NUP_UP_RIGHT 2017
#define IDS_NUP_LEFT_UP 2018
#define IDS_NUP_UP_LEFT 2019

// Finishing page: stapling
#define IDS_STAPLE_NONE 2020
#define IDS_STAPLE_TOP_LEFT 2021
#define IDS_STAPLE_TOP_RIGHT 2022
#define IDS_STAPLE_DUAL_TOP 2023
#define IDS_STAPLE_DUAL_LEFT 2024
#define IDS_STAPLE_DUAL_RIGHT 2025
#define IDS_STAPLE_BOTTOM_LEFT 2026
#define IDS_STAPLE_BOTTOM_RIGHT 2027
#define IDS_STAPLE_DUAL_BOTTOM 2028
#define IDS_STAPLE_SADDLE 2029

// Finishing page: hole punching
#define IDS_PUNCH_NONE 2030
#define IDS_PUNCH_BOTTOM 2031
#define IDS_PUNCH_LEFT 2032
#define IDS_PUNCH_RIGHT 2033
#define IDS_PUNCH_TOP 2034

// Advanced page: compression of the pictures in a print job
#define IDS_COMPRESSION_LOSSLESS 2035
#define IDS_COMPRESSION_QUALITY 2036
#define IDS_COMPRESSION_OPTIMIZED 2037
#define IDS_COMPRESSION_NO_IMAGE 2038

// Watermark page: the box in which a watermark text is typed
#define IDS_OK 2039
#define IDS_CANCEL 2040
#define IDS_WATERMARK_BOX_TITLE 2041
#define IDS_WATERMARK_BOX_PROMPT 2042

#endif
