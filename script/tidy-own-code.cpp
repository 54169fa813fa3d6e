// A plugin of clang-tidy: checks look at this project's declarations only. Left alone they go
// through every declaration of the standard library and of GoogleTest as well, whose findings
// nobody wants, and most of their time goes there. From clang-tidy 21 on it does so itself.
#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendPluginRegistry.h>

#include <memory>
#include <string>
#include <vector>

namespace {

class Narrower : public clang::ASTConsumer {
  void HandleTranslationUnit(clang::ASTContext& context) override {
    const clang::SourceManager& sources = context.getSourceManager();
    std::vector<clang::Decl*> own;
    for (clang::Decl* declaration : context.getTranslationUnitDecl()->decls()) {
      if (!sources.isInSystemHeader(declaration->getLocation())) own.push_back(declaration);
    }
    context.setTraversalScope(own);
  }
};

class Plugin : public clang::PluginASTAction {
  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance&,
                                                        llvm::StringRef) override {
    return std::make_unique<Narrower>();
  }
  bool ParseArgs(const clang::CompilerInstance&, const std::vector<std::string>&) override {
    return true;
  }
  ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<Plugin> registration("own-code", "Looks at own code only");

}  // namespace
