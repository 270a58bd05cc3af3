#pragma once

/// Prints the head of the progress bar.
void showProgressInit();

/// Adds to the bar after each finished row of the picture, from any thread and in any order.
void showProgress(int row);
