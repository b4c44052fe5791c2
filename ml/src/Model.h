// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TfApi.h"

#include <zav/Error.h>

#include <string>
#include <vector>

namespace zav {

class FileNameTensor;
class Tensor;

/// A trained network: a TensorFlow graph, loaded from a file, and the session that runs it.
///
/// Failures are `Error(Failure)` and carry no text, with one exception: without the TensorFlow runtime, `init` returns
/// the message of `TfApi::checkComplete`. The text of the others is a critical message of the category "zav.ml", or a
/// line on standard error where a file is the cause.
///
/// One thread at a time, together with its tensors; separate models are independent.
class Model
{
public:
    /// Loads nothing: until an `init` has succeeded every `run`, `save` and `restore` fails.
    Model();
    /// Frees session, graph and status. Tensors of this model may outlive it, see `Tensor`.
    ~Model();

    Q_DISABLE_COPY_MOVE(Model)

    /// Loads the serialised GraphDef at `path` (UTF-8) and runs its operation "init" once; a graph without one is
    /// refused. Operations keep the names of the file.
    ///
    /// `config` is a serialised ConfigProto for the session, and may be empty; bytes that TensorFlow cannot parse
    /// leave it at its defaults. A network loaded before is freed first, and its tensors have to be bound again. After
    /// a failure only another `init` or destruction makes sense.
    Error init(const std::string &path, const std::vector<unsigned char> &config);

    /// Runs the network once. Every input must hold data and be no output as well; every output must be bound and
    /// valid.
    ///
    /// On success the outputs hold the results, with their shapes, and the inputs are empty again. When the runtime
    /// refuses the run, the inputs keep their data and the outputs are empty; when a check of the tensors fails,
    /// nothing has changed.
    Error run(const std::vector<Tensor *> &inputs, const std::vector<Tensor *> &outputs);
    Error run(const std::vector<Tensor *> &inputs, Tensor &output);
    Error run(Tensor &input, Tensor &output);

    /// Writes the graph's variables to a checkpoint through its saver: the file name goes into "save/Const", the
    /// operation "save/control_dependency" is run.
    Error save(const std::string &path);

    /// Reads the graph's variables from a checkpoint through its saver: the file name goes into "save/Const", the
    /// operation "save/restore_all" is run.
    Error restore(const std::string &path);

    /// Success if the condition holds. Otherwise logs the message and returns a `Failure` without it.
    Error errorCheck(bool condition, const std::string &message) const;

    /// For `Tensor::init`. Null before the first `init`; owned by the model and replaced by the next `init`.
    TF_Graph *getGraph() const { return graph; }
    TF_Status *getStatus() const { return status; }

    /// The names of all operations, in the graph's order; with `print`, each also as a line on standard output.
    std::vector<std::string> operationNames(bool print) const;

private:
    friend class ModelInspector; // the unit tests' view of the fields

    void clear();
    void createSession(const std::vector<unsigned char> &config);
    TF_Buffer *readGraphFile(const std::string &path) const;
    void importGraph(TF_Buffer *graphDef);
    Error runSession(const std::vector<Tensor *> &inputs, const std::vector<Tensor *> &outputs);
    Error runSaver(const FileNameTensor &name, const char *operationName, const std::string &missingMessage);
    Error checkStatus() const;
    Error checkSession() const;
    Error checkAllocated(const FileNameTensor &name) const;
    Error checkEncoded(bool encoded, const std::string &path) const;

    TfApi api;
    TF_Graph *graph = nullptr;
    TF_Session *session = nullptr;
    TF_Status *status = nullptr;
};

} // namespace zav
